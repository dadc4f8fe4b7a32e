#include "editor/TerrainMenu.h"

#include "editor/GroundPick.h"
#include "foundation/Diagnostics.h"
#include "input/Input.h"
#include "scene/DrawHelpers.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

namespace {

enum ETerrainOp : INT32 {
    OP_CHANGE_TERRAIN = 1,
    OP_SCULPT,
    OP_TOOL,
    OP_UPDATE,
    OP_CHANGE_SIZE,
    OP_COUNT = OP_CHANGE_SIZE
};

enum ETerrainTool : UINT32 { TOOL_RAISE = 0, TOOL_FLATTEN = 1 };

// A second at a strength of 100 takes the ground the whole way to its mean.
constexpr float FLATTEN_SCALE = 0.01f;

const char* ToolName(UINT32 Tool) {
    switch (Tool) {
    case TOOL_RAISE:
        return "[chg] Tool: Raise/Lower";
    case TOOL_FLATTEN:
        return "[chg] Tool: Flatten";
    default:
        return "[chg] Tool: UNKNOWN";
    }
}

} // namespace

UINT32 SMenu_Terrain::GetOpCount() {
    return OP_COUNT;
}

void SMenu_Terrain::GetOpName(GString* Out, INT32 Op) {
    switch (Op) {
    case OP_CHANGE_TERRAIN:
        *Out = "Change terrain";
        break;
    case OP_SCULPT:
        *Out = Sculpt ? "Sculpt - ON" : "Sculpt - OFF";
        break;
    case OP_TOOL:
        *Out = ToolName(Tool);
        break;
    case OP_UPDATE:
        *Out = "Update";
        break;
    case OP_CHANGE_SIZE:
        *Out = "Change size";
        break;
    default:
        *Out = NO_OP_NAME;
    }
}

void SMenu_Terrain::DoOp(INT32 Op) {
    switch (Op) {
    case OP_SCULPT:
        Sculpt = !Sculpt;
        break;
    case OP_TOOL:
        Tool = (Tool - 1) & 1;
        break;
    case OP_UPDATE:
        Level->Terrain->RebuildGeometry();
        Level->Terrain->RebuildTree();
        break;
    default:
        break;
    }
}

void SMenu_Terrain::Update(float Delta) {
    Hover = Level->BrushRows();
    if (!Sculpt || !GMouseLeft) {
        return;
    }
    if (!GLastMouseLeft) {
        Active = Hover;
    }
    const SGroundPick Ground(*Level);
    if (Active && Ground.IsHit()) {
        Apply(Ground.Point(), Delta);
    }
}

void SMenu_Terrain::Apply(const Vec3& Centre, float Delta) {
    const CLevel& L = *Level;
    const bool Use3D = L.BrushUse3D != 0;
    switch (Tool) {
    case TOOL_RAISE:
        L.Terrain->Raise(Centre, L.BrushSize, L.BrushCurve, L.BrushStrength * Delta, Use3D);
        break;
    case TOOL_FLATTEN:
        L.Terrain->Flatten(Centre, L.BrushSize, L.BrushCurve, L.BrushStrength * FLATTEN_SCALE * Delta, Use3D);
        break;
    default:
        FatalError("Unknown terrain tool activated - %d!", Tool);
    }
}

void SMenu_Terrain::Draw3D() {
    const SGroundPick Ground(*Level);
    if (!Ground.IsHit()) {
        return;
    }
    UseColorProgram();
    if (Hover && Sculpt) {
        Level->Terrain->DrawBrush(Ground.Point(), Level->BrushSize, Level->BrushCurve, Level->BrushUse3D != 0);
    }
    DrawBrushCursor(Ground.Point());
}

// A cross along the axes, as long as the brush is wide: red along X, green along Y, blue along Z, fading outwards.
void SMenu_Terrain::DrawBrushCursor(const Vec3& Centre) const {
    constexpr UINT32 BLACK = 0xFF000000u;
    constexpr UINT32 FAR_COLORS[3] = {0x000000FFu, 0x0000FF00u, 0x00FF0000u}; // transparent
    SVertex16 Lines[12];
    SVertex16* Next = Lines;
    for (int Axis = 0; Axis < 3; ++Axis) {
        for (const float Reach : {-Level->BrushSize, Level->BrushSize}) {
            Vec3 End = Centre;
            End[Axis] += Reach;
            *Next++ = {Centre, BLACK};
            *Next++ = {End, FAR_COLORS[Axis]};
        }
    }
    DrawVertices16(Lines, 12, GL_LINES);
}
