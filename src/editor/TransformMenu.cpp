#include "editor/TransformMenu.h"

#include "editor/Rows.h"
#include "graphics/ShaderLib.h"
#include "gui/Gui.h"
#include "input/Input.h"
#include "scene/DrawHelpers.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

#include <cmath>

namespace {

constexpr float DEGREES_PER_RADIAN = 57.2957763671875f;
constexpr float HALF_SIZE_OF_A_POINT = 1.0f; // of the cube round clients without extent
constexpr Vec4 HIDDEN_COLOR = {0.3f, 0.5f, 0.7f, 0.5f};
constexpr Vec4 VISIBLE_COLOR = {0.7f, 0.5f, 0.3f, 1.0f};

struct SRow {
    UINT32 Id;
    const char* Label;
    int Value; // of the three bases and three extents
};

const SRow UNIFORM_ROWS[] = {{1226, "SCALE-BASE", 0}, {1227, "SCALE-EXT", 3}};
const SRow SCALE_ROWS[] = {{1234, "SCALE-BASE-X", 0}, {1235, "SCALE-BASE-Y", 1}, {1236, "SCALE-BASE-Z", 2},
                           {1239, "SCALE-EXT-X", 3},  {1240, "SCALE-EXT-Y", 4},  {1241, "SCALE-EXT-Z", 5}};
const SRow ROTATE_ROWS[] = {{1246, "ROTATE-BASE-P", 1}, {1247, "ROTATE-BASE-Y", 0}, {1248, "ROTATE-BASE-R", 2},
                            {1251, "ROTATE-EXT-P", 4},  {1252, "ROTATE-EXT-Y", 3},  {1253, "ROTATE-EXT-R", 5}};
const SRow MOVE_ROWS[] = {{1256, "MOVE-BASE-X", 0}, {1257, "MOVE-BASE-Y", 1}, {1258, "MOVE-BASE-Z", 2},
                          {1261, "MOVE-EXT-X", 3},  {1262, "MOVE-EXT-Y", 4},  {1263, "MOVE-EXT-Z", 5}};
constexpr UINT32 SNAP_ROW = 1272;
constexpr float MAX_SNAP_DIVIDER = 100;

// Rows of values beyond ValueCount are left out.
template <size_t N>
void ValueRows(CLevel& Level, const SRow (&Rows)[N], float* Values, int ValueCount) {
    for (const SRow& Row : Rows) {
        if (Row.Value < ValueCount) {
            Level.FloatRow(Row.Id, Row.Label, Values + Row.Value, -NO_LIMIT, NO_LIMIT);
        }
    }
}

float Mean(const float* Three) {
    return (Three[0] + Three[1] + Three[2]) / 3;
}

void SetAll(float* Three, float Value) {
    Three[0] = Three[1] = Three[2] = Value;
}

Vec3 Divided(const Vec3& a, const Vec3& b) {
    return {a.x / b.x, a.y / b.y, a.z / b.z};
}

// The post-processed picture has no depth of its own: the scene's is laid into the window, for lines that it may hide.
void LayDownSceneDepth(const CLevel& Level) {
    const UINT32 Program = ShaderGetProgram("SceneDepth", "FSQuad");
    glUseProgram(Program);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, Level.SceneRT.DepthTex);
    ShaderSetUniform1i(0, Program, "DTex");
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_ALWAYS);
    DrawQuad(-1, 1, 1, -1, 0);
    glDepthFunc(GL_LEQUAL);
    glDisable(GL_DEPTH_TEST);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

} // namespace

SMenu_Transform::SMenu_Transform(CLevel* Level, float* ScaleData, float* RotateData, float* MoveData)
    : SMenu(Level), ScaleData(ScaleData), RotateData(RotateData), MoveData(MoveData) {}

UINT32 SMenu_Transform::GetOpCount() {
    return HasSelection() ? 5 : 2;
}

void SMenu_Transform::GetOpName(GString* Out, INT32 Op) {
    switch (Op) {
    case 1:
        *Out = "Reset";
        break;
    case 2:
        *Out = UniformScale ? "UForm Scale: ON" : "UForm Scale: OFF";
        break;
    case 3:
        *Out = Mode == TRANSFORM_MOVE ? "> Move" : "Move";
        break;
    case 4:
        *Out = Mode == TRANSFORM_ROTATE ? "> Rotate" : "Rotate";
        break;
    case 5:
        *Out = Mode == TRANSFORM_SCALE ? "> Scale" : "Scale";
        break;
    default:
        *Out = NO_OP_NAME;
    }
}

void SMenu_Transform::DoOp(INT32 Op) {
    switch (Op) {
    case 1:
        Reset();
        break;
    case 2:
        FlipUniformScale();
        break;
    case 3:
        Mode = TRANSFORM_MOVE;
        break;
    case 4:
        Mode = TRANSFORM_ROTATE;
        break;
    case 5:
        Mode = TRANSFORM_SCALE;
        break;
    default:
        break;
    }
}

// A cube goes back to what Prepare made it.
void SMenu_Transform::Reset() {
    if (HasSelection()) {
        Rotation = Quat();
        Centre = PreparedCentre;
        HalfSize = PreparedHalfSize;
        ReadEuler();
        return;
    }
    SetAll(ScaleData, 1);
    for (float* Zeros : {ScaleData + 3, RotateData, RotateData + 3, MoveData, MoveData + 3}) {
        SetAll(Zeros, 0);
    }
}

// Several clients scale uniformly always. Other rows stand in place of those that the mouse may hold.
void SMenu_Transform::FlipUniformScale() {
    if (Clients.count > 1) {
        return;
    }
    GuiLetGo();
    UniformScale = !UniformScale;
    if (UniformScale) {
        SetAll(ScaleData, Mean(ScaleData));
        if (!HasSelection()) {
            SetAll(ScaleData + 3, Mean(ScaleData + 3));
        }
    }
}

void SMenu_Transform::Prepare() {
    if (!HasSelection()) {
        return;
    }
    ScaleData = &HalfSize.x;
    RotateData = &Euler.x;
    MoveData = &Centre.x;
    DragFace = -1;
    BBox Box = Clients[0]->BBox;
    for (const IRenderable* Client : Clients) {
        M_BBoxAddPoint(Client->BBox.Min, Box);
        M_BBoxAddPoint(Client->BBox.Max, Box);
    }
    Centre = PreparedCentre = (Box.Min + Box.Max) * 0.5f;
    Rotation = Quat();
    const Vec3 Half = Box.Max - Centre;
    const float Size = Mean(&Half.x);
    SetAll(&HalfSize.x, Size > 0 ? Size : HALF_SIZE_OF_A_POINT);
    PreparedHalfSize = HalfSize;
    Items.Resize(0);
    for (IRenderable* Client : Clients) {
        STransformItem Item;
        Vec3 Value;
        Item.RelScale = Divided(*Client->GetScale(&Value), HalfSize);
        Client->GetRotation(&Item.Rotation);
        Item.RelPos = Divided(*Client->GetPosition(&Value) - Centre, HalfSize);
        Items.Add(Item);
    }
}

// All rows come before the drag, so that a press on one of them takes no hold of the cube behind it.
void SMenu_Transform::Update(float) {
    ScaleRows();
    ReadEuler();
    const int Shown = HasSelection() ? 3 : 6;
    ValueRows(*Level, ROTATE_ROWS, RotateData, Shown);
    ValueRows(*Level, MOVE_ROWS, MoveData, Shown);
    Level->FloatRow(SNAP_ROW, "Snap divider", &SnapDivider, 0, MAX_SNAP_DIVIDER);
    SnapDivider = std::nearbyint(SnapDivider);
    Drag(ReadInput());
    ReadEuler();
    SnapValues();
    MoveClients();
}

void SMenu_Transform::ScaleRows() {
    const int Shown = HasSelection() ? 3 : 6;
    if (!ScalesUniformly()) {
        ValueRows(*Level, SCALE_ROWS, ScaleData, Shown);
        return;
    }
    ValueRows(*Level, UNIFORM_ROWS, ScaleData, Shown);
    SetAll(ScaleData, ScaleData[0]);
    if (!HasSelection()) {
        SetAll(ScaleData + 3, ScaleData[3]);
    }
}

// Adding zero takes the sign off a zero, which a row would show.
void SMenu_Transform::ReadEuler() {
    M_QuatToEuler(Rotation, Euler);
    Euler = Euler * DEGREES_PER_RADIAN + Vec3();
}

SDragInput SMenu_Transform::ReadInput() const {
    SDragInput Input;
    M_CameraPickRay(Input.Pick);
    Input.Pressed = GMouseLeft && !GLastMouseLeft && Level->MouseOffRows(Level->MenuRow);
    Input.Held = GMouseLeft && GLastMouseLeft;
    Input.Released = !GMouseLeft && GLastMouseLeft;
    Input.Keys = (GKeys[SDLK_LSHIFT] ? DRAG_SHIFT : 0) | (GKeys[SDLK_LCTRL] ? DRAG_CONTROL : 0);
    Input.Alt = GKeys[SDLK_LALT] != 0;
    return Input;
}

// Ties go to the even neighbour.
void SMenu_Transform::SnapValues() {
    if (SnapDivider == 0) {
        return;
    }
    const int Count = HasSelection() ? 3 : 6;
    for (float* Values : {ScaleData, RotateData, MoveData}) {
        for (int i = 0; i < Count; ++i) {
            Values[i] = std::nearbyint(Values[i] * SnapDivider) / SnapDivider;
        }
    }
}

void SMenu_Transform::MoveClients() {
    Mat4 Turn;
    M_Mat4FromQuat(Turn, Rotation);
    for (UINT32 i = 0; i < Items.count; ++i) {
        const STransformItem& Item = Items[i];
        Vec3 Offset;
        M_Mat4MulDir(Turn, HalfSize * Item.RelPos, Offset);
        Clients[i]->SetPosition(Offset + Centre);
        Quat Turned;
        M_QuatMul(Turned, Rotation, Item.Rotation);
        Clients[i]->SetRotation(Turned);
        Clients[i]->SetScale(HalfSize * Item.RelScale);
    }
}

// Dim and blue where the scene hides the cube, bright elsewhere.
void SMenu_Transform::Draw3D() {
    if (!HasSelection()) {
        return;
    }
    LayDownSceneDepth(*Level);
    UseColorProgram();
    const BBox Box = {Centre - HalfSize, Centre + HalfSize};
    DrawRotatedBoxLines(Box, Rotation, M_PackColor(HIDDEN_COLOR));
    glEnable(GL_DEPTH_TEST);
    DrawRotatedBoxLines(Box, Rotation, M_PackColor(VISIBLE_COLOR));
    glDisable(GL_DEPTH_TEST);
}
