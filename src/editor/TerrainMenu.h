// The brush on the ground: raises, lowers and flattens the heights under the mouse.
//
// A stroke lasts as long as the left button is held; it counts only if it began off the rows. The heights change at
// once, for collision and for the next stroke; the picture changes at the operation "Update", which costs some tens of
// milliseconds on a large terrain. Nothing of this is written to a file: heights come from the level's picture.
#pragma once

#include "editor/Menu.h"
#include "foundation/Maths.h"

struct SMenu_Terrain : SMenu {
    using SMenu::SMenu;

    UINT32 GetOpCount() override;
    void GetOpName(GString* Out, INT32 Op) override;
    void DoOp(INT32 Op) override;
    void Update(float Delta) override;
    void Draw3D() override;

    UINT32 Sculpt = 0; // the brush is on
    UINT32 Active = 0; // this stroke began on the scene
    UINT32 Hover = 0;  // the mouse is off the rows
    UINT32 Tool = 0;   // 0 raise or lower, 1 flatten

private:
    void Apply(const Vec3& Centre, float Delta);
    void DrawBrushCursor(const Vec3& Centre) const;
};
