#include "scene/DrawHelpers.h"

#include "graphics/ShaderLib.h"

#include <GL/glew.h>

namespace {

constexpr float QUARTER_PI = 0.785398163f;

// Black, three tenths opaque.
constexpr UINT32 VEIL_COLOR = 79u << 24;
constexpr UINT32 WHITE = 0xFFFFFFFFu;

constexpr INT32 BOX_CORNERS = 8;

// Switches client arrays on for one draw and off again. GL_VERTEX_ARRAY is always on.
struct SArrayScope {
    explicit SArrayScope(UINT32 First, UINT32 Second = 0) : Arrays{First, Second} {
        for (UINT32 Array : Arrays) {
            if (Array) {
                glEnableClientState(Array);
            }
        }
    }
    ~SArrayScope() {
        for (UINT32 Array : Arrays) {
            if (Array) {
                glDisableClientState(Array);
            }
        }
    }
    SArrayScope(const SArrayScope&) = delete;
    SArrayScope& operator=(const SArrayScope&) = delete;

    UINT32 Arrays[2];
};

// Bit 0, 1 and 2 of Index choose the maximum on the x, y and z axis.
Vec3 BoxCorner(const BBox& Box, INT32 Index) {
    return {Index & 1 ? Box.Max.x : Box.Min.x, Index & 2 ? Box.Max.y : Box.Min.y, Index & 4 ? Box.Max.z : Box.Min.z};
}

void MakeEdges(const Vec3 (&Corners)[BOX_CORNERS], UINT32 Color, SVertex16 (&Out)[BOX_LINE_VERTICES]) {
    INT32 Count = 0;
    for (INT32 From = 0; From < BOX_CORNERS; From++) {
        for (INT32 Axis = 1; Axis < BOX_CORNERS; Axis *= 2) {
            if (!(From & Axis)) {
                Out[Count++] = {Corners[From], Color};
                Out[Count++] = {Corners[From | Axis], Color};
            }
        }
    }
}

// From a sprite's centre to two neighbouring corners; the other two lie opposite.
struct SDiagonals {
    Vec3 ToCorner2;
    Vec3 ToCorner1;
};

// Up is of unit length.
SDiagonals BillboardDiagonals(const Vec3& Up, float Size, float Angle, float Stretch) {
    Vec3 Forward = GCamera.Target - GCamera.Eye;
    M_Normalize(Forward);
    Vec3 Right = M_Cross(Forward, Up);
    M_Normalize(Right);
    const Vec3 Upward = M_Cross(Right, Forward) * Size;
    Right = Right * Size * Stretch;
    const float C0 = M_Cos(Angle + QUARTER_PI) / M_Cos(QUARTER_PI);
    const float C1 = M_Cos(Angle + 3.0f * QUARTER_PI) / M_Cos(QUARTER_PI);
    return {Right * C0 + Upward * C1, Upward * C0 - Right * C1};
}

} // namespace

void DrawVertices16(const SVertex16* Vertices, INT32 Count, UINT32 Mode) {
    const SArrayScope Scope(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(SVertex16), &Vertices->Pos);
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(SVertex16), &Vertices->Color);
    glDrawArrays(Mode, 0, Count);
}

void DrawVertices20(const SVertex20* Vertices, INT32 Count, UINT32 Mode) {
    glClientActiveTexture(GL_TEXTURE0);
    const SArrayScope Scope(GL_TEXTURE_COORD_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(SVertex20), &Vertices->Pos);
    glTexCoordPointer(2, GL_FLOAT, sizeof(SVertex20), &Vertices->Tex);
    glDrawArrays(Mode, 0, Count);
}

void DrawQuad(float Left, float Right, float Top, float Bottom, float Z) {
    const SVertex20 Vertices[4] = {
        {{Left, Top, Z}, {0.0f, 1.0f}},
        {{Right, Top, Z}, {1.0f, 1.0f}},
        {{Right, Bottom, Z}, {1.0f, 0.0f}},
        {{Left, Bottom, Z}, {0.0f, 0.0f}},
    };
    DrawVertices20(Vertices, 4, GL_TRIANGLE_FAN);
}

void DrawRect(float Left, float Right, float Top, float Bottom, float Z) {
    const SVertex16 Vertices[4] = {
        {{Left, Top, Z}, VEIL_COLOR},
        {{Right, Top, Z}, VEIL_COLOR},
        {{Right, Bottom, Z}, VEIL_COLOR},
        {{Left, Bottom, Z}, VEIL_COLOR},
    };
    DrawVertices16(Vertices, 4, GL_TRIANGLE_FAN);
}

void MakeBoxLines(const BBox& Box, UINT32 Color, SVertex16 (&Out)[BOX_LINE_VERTICES]) {
    Vec3 Corners[BOX_CORNERS];
    for (INT32 i = 0; i < BOX_CORNERS; i++) {
        Corners[i] = BoxCorner(Box, i);
    }
    MakeEdges(Corners, Color, Out);
}

void DrawBoxLines(const BBox& Box, UINT32 Color) {
    SVertex16 Lines[BOX_LINE_VERTICES];
    MakeBoxLines(Box, Color, Lines);
    DrawVertices16(Lines, BOX_LINE_VERTICES, GL_LINES);
}

void DrawRotatedBoxLines(const BBox& Box, const Quat& Rotation, UINT32 Color) {
    const Vec3 Centre = (Box.Min + Box.Max) * 0.5f;
    Vec3 Corners[BOX_CORNERS];
    for (INT32 i = 0; i < BOX_CORNERS; i++) {
        Vec3 Turned;
        M_QuatRotate(Rotation, BoxCorner(Box, i) - Centre, Turned);
        Corners[i] = Centre + Turned;
    }
    SVertex16 Lines[BOX_LINE_VERTICES];
    MakeEdges(Corners, Color, Lines);
    DrawVertices16(Lines, BOX_LINE_VERTICES, GL_LINES);
}

void DrawQuads24(const SVertex24* Vertices, INT32 Count) {
    glClientActiveTexture(GL_TEXTURE0);
    const SArrayScope Scope(GL_TEXTURE_COORD_ARRAY, GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(SVertex24), &Vertices->Pos);
    glTexCoordPointer(2, GL_FLOAT, sizeof(SVertex24), &Vertices->Tex);
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(SVertex24), &Vertices->Color);
    glDrawArrays(GL_QUADS, 0, Count);
}

void DrawQuads40(const SVertex40* Vertices, INT32 Count) {
    glClientActiveTexture(GL_TEXTURE0);
    const SArrayScope Scope(GL_TEXTURE_COORD_ARRAY, GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(SVertex40), &Vertices->Pos);
    glTexCoordPointer(3, GL_FLOAT, sizeof(SVertex40), &Vertices->Tex);
    glColorPointer(4, GL_FLOAT, sizeof(SVertex40), &Vertices->Color);
    glDrawArrays(GL_QUADS, 0, Count);
}

void MakeBillboard24(const Vec3& Centre, float Size, float Angle, float Stretch, SVertex24 (&Out)[4]) {
    const SDiagonals Half = BillboardDiagonals(GCamera.Up, Size, Angle, Stretch);
    Out[0] = {Centre - Half.ToCorner2, {0.0f, 0.0f}, WHITE};
    Out[1] = {Centre + Half.ToCorner1, {1.0f, 0.0f}, WHITE};
    Out[2] = {Centre + Half.ToCorner2, {1.0f, 1.0f}, WHITE};
    Out[3] = {Centre - Half.ToCorner1, {0.0f, 1.0f}, WHITE};
}

void MakeBillboard40(const Vec3& Centre, float Size, float Angle, SVertex40 (&Out)[4], float Layer, const Vec3& Up,
                     float R, float G, float B, float A) {
    Vec3 UnitUp = Up;
    M_Normalize(UnitUp);
    const SDiagonals Half = BillboardDiagonals(UnitUp, Size, Angle, 1.0f);
    const Vec4 Color = {R, G, B, A};
    Out[0] = {Centre - Half.ToCorner2, {0.0f, 1.0f, Layer}, Color};
    Out[1] = {Centre + Half.ToCorner1, {0.0f, 0.0f, Layer}, Color};
    Out[2] = {Centre + Half.ToCorner2, {1.0f, 0.0f, Layer}, Color};
    Out[3] = {Centre - Half.ToCorner1, {1.0f, 1.0f, Layer}, Color};
}

void DrawBillboard(const Vec3& Centre, float Size, float Angle, float Layer, const Vec3& Up, float R, float G, float B,
                   float A) {
    SVertex40 Vertices[4];
    MakeBillboard40(Centre, Size, Angle, Vertices, Layer, Up, R, G, B, A);
    DrawQuads40(Vertices, 4);
}

void UseColorProgram() {
    const UINT32 Program = ShaderGetProgram("ColorOnly", "ColorOnly");
    glUseProgram(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
}

Quat QuatFromAxisAngle(const Vec3& Axis, float Angle) {
    const Vec3 v = Axis * M_Sin(Angle / 2.0f);
    return {v.x, v.y, v.z, M_Cos(Angle / 2.0f)};
}
