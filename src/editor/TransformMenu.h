// SMenu_Transform: moves, turns and scales. With clients it puts a cube round them, whose faces are dragged in the
// picture, and they follow it in every step; without, its rows edit three transforms of the mesh brush, each as three
// base values and three random extents, and nothing is dragged.
//
// Life: construct with the values to edit; to work on clients, fill Clients and call Prepare; push. Leaving the menu
// keeps what it wrote. Ownership: neither values nor clients are owned, and both outlive the menu; Prepare points the
// three value pointers at the menu's own cube, where only the three base values exist.
// Units: world units; rows show rotations in degrees, as yaw, pitch and roll. Directions of turning are those of
// M_Mat4FromQuat. Axes and faces are the cube's own: face f lies on axis f / 2, an even f on its positive side.
// Cost: a step writes each client once; drawing is 24 lines and a full-screen quad. Bad input: clients without extent
// get a cube of half size 1, and what has no size on an axis keeps none by any drag; only the rows change that.
#pragma once

#include "editor/Menu.h"
#include "foundation/Maths.h"
#include "scene/Renderable.h"

enum ETransformMode : UINT32 { TRANSFORM_MOVE, TRANSFORM_ROTATE, TRANSFORM_SCALE };

// Bits of SMenu_Transform::DragKeys.
constexpr UINT32 DRAG_SHIFT = 1;
constexpr UINT32 DRAG_CONTROL = 2;

constexpr INT32 CUBE_FACES = 6;

// What a step brings to a drag.
struct SDragInput {
    Ray Pick = {};
    bool Pressed = false;  // the left button went down in this step, and not on a row
    bool Held = false;     // it is down and was so a step before
    bool Released = false; // it came up in this step
    UINT32 Keys = 0;       // DRAG_SHIFT, DRAG_CONTROL
    bool Alt = false;      // scales uniformly for as long as it is down
};

// A client as the cube sees it: place and scale in half sizes.
struct STransformItem {
    Quat Rotation;
    Vec3 RelPos;
    Vec3 RelScale;
};

struct SMenu_Transform : SMenu {
    SMenu_Transform(CLevel* Level, float* ScaleData, float* RotateData, float* MoveData);

    UINT32 GetOpCount() override;
    void GetOpName(GString* Out, INT32 Op) override;
    void DoOp(INT32 Op) override;
    void Update(float Delta) override;
    void Draw3D() override;

    // Puts the cube round Clients, which stand where they are until it is changed. Without clients nothing happens.
    void Prepare();

    // Writes the cube to the clients; the entities they belong to bring bounds and grid along.
    void MoveClients();

    // One step of the drag that the mode stands for: begins, follows or ends it.
    void Drag(const SDragInput& Input);

    // Of the six faces, outward. An axis without size has zero normals.
    void BuildPlanes(Plane Out[CUBE_FACES]) const;

    // The face that the ray meets first from outside, or -1.
    static INT32 PickFace(const Ray& Pick, const Plane Planes[CUBE_FACES]);

    float* ScaleData;
    float* RotateData; // degrees
    float* MoveData;
    UINT32 UniformScale = 0; // one value for all three axes
    float SnapDivider = 0;   // values snap to multiples of 1 / SnapDivider; 0 is off
    UINT32 Mode = TRANSFORM_MOVE;
    GArray<IRenderable*> Clients;

    // The cube.
    Quat Rotation;
    Vec3 Centre;
    Vec3 Euler; // Rotation in degrees, for the rows
    Vec3 HalfSize;
    GArray<STransformItem> Items; // one for each client

    // The drag; what begins with Start is as it was at the press.
    INT32 DragFace = -1; // -1 is none
    UINT32 DragKeys = 0; // at the press
    Plane DragPlane;     // in which the mouse is followed
    Plane StartPlanes[CUBE_FACES];
    Vec3 GrabPoint; // where the ray met DragPlane at the press
    Vec3 DragAxis;  // of a move along the face's normal
    Vec3 StartCentre;
    Vec3 StartHalfSize;
    Quat StartRotation;

private:
    bool HasSelection() const { return Clients.count > 0; }
    bool ScalesUniformly() const { return UniformScale || Clients.count > 1; }
    void Reset();
    void FlipUniformScale();
    void ScaleRows();
    void SnapValues();
    void ReadEuler();
    SDragInput ReadInput() const;

    void BeginDrag(INT32 Face, const Plane Planes[CUBE_FACES], const SDragInput& Input);
    void FollowDrag(const SDragInput& Input);
    void DragMove(const Vec3& p);
    void DragRotate(const Vec3& p);
    void DragScaleUniform(const Vec3& p);
    void DragScaleAxes(const Vec3& p);
    void StretchInFace(const Vec3& p);
    void KeepOtherSide();
    Vec3 FaceCentre() const;
    float PullRatio(const Vec3& p) const;

    // What Prepare made, for "Reset".
    Vec3 PreparedCentre;
    Vec3 PreparedHalfSize;
};
