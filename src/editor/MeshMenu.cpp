#include "editor/MeshMenu.h"

#include "editor/GroundPick.h"
#include "editor/TransformMenu.h"
#include "foundation/FileDialog.h"
#include "input/Input.h"
#include "platform/Platform.h"
#include "scene/Renderable.h"
#include "world/MeshEntity.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

enum EMeshOp : INT32 {
    OP_CHOOSE_MESH = 1,
    OP_MESH_NAME,
    OP_TOOL,
    OP_DRAW_BOXES,
    OP_TRANSFORM,
    OP_COUNT = OP_TRANSFORM
};

enum EMeshTool : UINT32 { TOOL_SELECT = 0, TOOL_BRUSH = 1 };

constexpr UINT32 LAST_TOOL = TOOL_BRUSH;
constexpr const char* PLACED_CLASS = "StaticMesh";
constexpr UINT32 VALUE_LENGTH = 191; // characters of a property

constexpr Vec4 NO_COLOR = {0, 0, 0, 0};
constexpr Vec4 MESH_COLOR = {0.4f, 0.5f, 0.6f, 0.5f};
constexpr Vec4 LIGHT_COLOR = {0.9f, 0.8f, 0.3f, 0.5f};
constexpr Vec4 SELECTED_MORE = {0.5f, 0.2f, 0, 0.5f};
constexpr Vec4 PICKED_MORE = {0, 0.2f, 0.5f, 0};

const char* ToolName(UINT32 Tool) {
    switch (Tool) {
    case TOOL_SELECT:
        return "[1/2] Tool: Select";
    case TOOL_BRUSH:
        return "[2/2] Tool: Brush";
    default:
        return "[-/2] Tool: UNKNOWN";
    }
}

const char* BareName(const GString& Path) {
    const char* Name = Path.CStr();
    for (const char* p = Name; *p; ++p) {
        if (*p == '/' || *p == '\\') {
            Name = p + 1;
        }
    }
    return Name;
}

// Out of a base and an extent for each axis. The random numbers come for z first.
Vec3 RandomVec3(const float (&Values)[6]) {
    Vec3 Result;
    for (int Axis = 2; Axis >= 0; --Axis) {
        Result[Axis] = (2 * PlatRandUnit() - 1) * Values[Axis + 3] + Values[Axis];
    }
    return Result;
}

void SetVec3(GProperties& Props, const char* Key, const Vec3& v) {
    Props[Key].Format(VALUE_LENGTH, "%f;%f;%f", v.x, v.y, v.z);
}

Vec4 ColorOfKind(UINT32 Kind) {
    return Kind == CLIENT_MESH ? MESH_COLOR : Kind == CLIENT_LIGHT ? LIGHT_COLOR : NO_COLOR;
}

} // namespace

UINT32 SMenu_Mesh::GetOpCount() {
    return OP_COUNT;
}

void SMenu_Mesh::GetOpName(GString* Out, INT32 Op) {
    switch (Op) {
    case OP_CHOOSE_MESH:
        *Out = "Choose mesh";
        break;
    case OP_MESH_NAME:
        *Out = BareName(Level->MeshFile);
        break;
    case OP_TOOL:
        *Out = ToolName(Tool);
        break;
    case OP_DRAW_BOXES:
        *Out = DrawAABB ? "DrawAABB: ON" : "DrawAABB: OFF";
        break;
    case OP_TRANSFORM:
        *Out = Tool == TOOL_SELECT ? "Transform selection" : "Change transform";
        break;
    default:
        *Out = NO_OP_NAME;
    }
}

void SMenu_Mesh::DoOp(INT32 Op) {
    switch (Op) {
    case OP_CHOOSE_MESH:
        C_SysOpenModelFile(Level->MeshFile);
        break;
    case OP_TOOL:
        Tool = Tool < LAST_TOOL ? Tool + 1 : 0;
        break;
    case OP_DRAW_BOXES:
        DrawAABB = !DrawAABB;
        break;
    case OP_TRANSFORM:
        OpenTransform();
        break;
    default:
        break;
    }
}

// Lights have no transform to change and stay behind.
void SMenu_Mesh::OpenTransform() {
    GArray<IRenderable*> Clients;
    for (SSpatialClient* Client : Level->Selection) {
        if (Tool == TOOL_SELECT && Client->Kind == CLIENT_MESH) {
            Clients.Add(static_cast<IRenderable*>(Client));
        }
    }
    if (Tool == TOOL_SELECT && Clients.Size() == 0) {
        return;
    }
    SMenu_Transform* Menu = new SMenu_Transform(Level, PlaceScale, PlaceRotate, PlaceMove);
    if (Tool == TOOL_SELECT) {
        Menu->Clients = Clients;
        Menu->Prepare();
    }
    Level->PushMenu(Menu);
}

void SMenu_Mesh::Update(float Delta) {
    const UINT32 OffBrushRows = Level->BrushRows();
    Level->FloatRow(1692, RateIsDistance ? "Place dist." : "Place speed", &PlaceRate, 0, 10);
    Level->CheckRow(1693, "Speed / dist", &RateIsDistance);
    Level->FloatRow(1694, "Place depth", &PlaceDepth, 0, 1000);
    if (!OffBrushRows || !Level->MouseOffRows(3)) {
        return;
    }
    if (Tool == TOOL_BRUSH) {
        Brush(Delta);
    } else if (Tool == TOOL_SELECT) {
        Select();
    }
}

void SMenu_Mesh::Brush(float Delta) {
    const SGroundPick Ground(*Level);
    if (!Ground.IsHit()) {
        return;
    }
    PlaceTimer += PlaceRate * Delta;
    if (!GMouseLeft) {
        return;
    }
    if (!GLastMouseLeft) {
        PlaceTimer = 0;
        Place(Ground);
    } else if (PlaceTimer > 1) {
        PlaceTimer = std::fmod(PlaceTimer, 1.0f);
        Place(Ground);
    }
}

void SMenu_Mesh::Place(const SGroundPick& Ground) {
    if (Level->MeshFile.Empty()) {
        return;
    }
    const Ray& PickRay = Ground.PickRay;
    const Vec3 Sunk = Vec3{0, 0, -Level->BrushDownOffset} * M_Length(PickRay.Dir);
    const Vec3 Scale = RandomVec3(PlaceScale);
    const Quat Rotation = M_QuatFromEuler(RandomVec3(PlaceRotate) * DEGREES);
    const Vec3 Position = Ground.Point() + PickRay.Dir * PlaceDepth + Sunk + RandomVec3(PlaceMove);
    GProperties Props;
    Props["MeshName"] = Level->MeshFile;
    SetVec3(Props, "Position", Position);
    SetVec3(Props, "Scale", Scale);
    Props["Rotation"].Format(VALUE_LENGTH, "%f;%f;%f;%f", Rotation.x, Rotation.y, Rotation.z, Rotation.w);
    Level->AddEntity(CreateEntity(PLACED_CLASS, Props));
}

void SMenu_Mesh::Select() {
    const bool Control = GKeys[SDLK_LCTRL], Alt = GKeys[SDLK_LALT];
    if (!(Control && Alt)) {
        if (GMouseLeft && !GLastMouseLeft) {
            ShiftAtPress = GKeys[SDLK_LSHIFT];
            PressPos = GMousePos;
        }
        if (!GMouseLeft && GLastMouseLeft) {
            FinishClick(Control - Alt);
        }
    }
    if (GKeys[SDLK_DELETE] && !GLastKeys[SDLK_DELETE]) {
        DeleteSelected();
    }
}

void SMenu_Mesh::FinishClick(INT32 Mode) {
    if (ShiftAtPress && !(GMousePos == PressPos)) {
        Frustum Volume;
        M_CameraRectFrustum(PressPos, Volume);
        Level->SelectInFrustum(Mode, Volume);
    } else {
        Ray PickRay;
        M_CameraPickRay(PickRay);
        Level->PickScene(PickRay);
        Level->SelectPicked(Mode);
    }
}

void SMenu_Mesh::DeleteSelected() {
    SortedSelection = Level->Selection;
    Level->Selection.Clear();
    std::sort(SortedSelection.begin(), SortedSelection.end());
    for (CEntity* Entity : Level->Entities) {
        if (std::strcmp(Entity->Class->Name, PLACED_CLASS) == 0) {
            SSpatialClient* Client = &static_cast<CMeshEntity*>(Entity)->Client;
            if (std::binary_search(SortedSelection.begin(), SortedSelection.end(), Client)) {
                Level->RemoveEntity(Entity);
            }
        }
    }
}

void SMenu_Mesh::Draw3D() {
    Ray PickRay;
    M_CameraPickRay(PickRay);
    SSpatialClient* Picked = Level->PickScene(PickRay) ? Level->NearestPicked() : nullptr;
    if (Tool != TOOL_SELECT || !GMouseLeft) {
        Picked = nullptr;
    }
    Frustum View;
    M_CameraFrustum(View);
    Visible.Resize(0);
    ++GSpatialStamp;
    QueryClients(Level->Grid->Root, &Visible, View.Planes, 6);
    CollectBoxes(Picked);
    if (BoxLines.Size() > 0) {
        UseColorProgram();
        DrawVertices16(BoxLines.Data, static_cast<INT32>(BoxLines.Size()), GL_LINES);
    }
}

// The boxes of selected clients always; those of the others if wanted.
void SMenu_Mesh::CollectBoxes(const SSpatialClient* Picked) {
    BoxLines.Resize(0);
    SortedSelection = Level->Selection;
    std::sort(SortedSelection.begin(), SortedSelection.end());
    for (SSpatialClient* Client : Visible) {
        const bool Selected = std::binary_search(SortedSelection.begin(), SortedSelection.end(), Client);
        if (!Selected && !DrawAABB) {
            continue;
        }
        Vec4 Color = ColorOfKind(Client->Kind) + (Selected ? SELECTED_MORE : NO_COLOR);
        Color = Color + (Client == Picked ? PICKED_MORE : NO_COLOR);
        SVertex16 Lines[BOX_LINE_VERTICES];
        MakeBoxLines(Client->BBox, M_PackColor(Color), Lines);
        for (const SVertex16& Vertex : Lines) {
            BoxLines.Add(Vertex);
        }
    }
}
