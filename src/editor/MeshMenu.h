// Places meshes with a brush, selects them and deletes them; its operation 5 opens the menu that transforms them.
//
// The brush: a mesh comes at once where the left button goes down on the ground, and then PlaceRate of them a second as
// long as it is held, at most one a step. Each is an entity "StaticMesh" with a transform out of PlaceScale,
// PlaceRotate and PlaceMove: a base and a random range about it for each axis.
// The select tool: a click picks the nearest client under the mouse; a drag with left Shift at its start takes all
// whose boxes meet the rectangle. Control adds, Alt takes out. Delete removes selected entities of the class
// "StaticMesh", no others. Both tools rest while the mouse stands on the rows.
#pragma once

#include "editor/Menu.h"
#include "foundation/Maths.h"
#include "scene/DrawHelpers.h"

struct SGroundPick;
struct SSpatialClient;

struct SMenu_Mesh : SMenu {
    using SMenu::SMenu;

    UINT32 GetOpCount() override;
    void GetOpName(GString* Out, INT32 Op) override;
    void DoOp(INT32 Op) override;
    void Update(float Delta) override;
    void Draw3D() override;

    UINT32 Tool = 0;           // 0 select, 1 brush
    UINT32 DrawAABB = 0;       // the boxes of all visible clients are drawn, not only of the selected
    float PlaceRate = 1;       // meshes a second
    float PlaceDepth = 0;      // along the ray behind the ground, world units
    UINT32 RateIsDistance = 1; // only chooses the label of PlaceRate's row

    // Base x, y, z, then extent x, y, z: a value lies within base plus or minus extent.
    float PlaceScale[6] = {1, 1, 1, 0, 0, 0};
    float PlaceRotate[6] = {}; // yaw, pitch, roll in degrees
    float PlaceMove[6] = {};   // from the hit point

    float PlaceTimer = 0;    // in meshes: above 1 the next one is due
    UINT32 ShiftAtPress = 0; // left Shift was down when the left button went down
    Vec2 PressPos;           // of the mouse at that time
    GArray<SSpatialClient*> Visible;

private:
    void OpenTransform();
    void Brush(float Delta);
    void Place(const SGroundPick& Ground);
    void Select();
    void FinishClick(INT32 Mode);
    void DeleteSelected();
    void CollectBoxes(const SSpatialClient* Picked);

    GArray<SSpatialClient*> SortedSelection; // by address, for look-ups
    GArray<SVertex16> BoxLines;
};
