// Drawing of a few quads and lines straight from memory: full-screen quads, veils, box lines and billboards.
//
// The caller has made a program current, set its matrices, bound its textures and left no vertex buffer bound. All
// functions expect GL_VERTEX_ARRAY enabled and leave it so; every other array that they switch on they switch off.
// Nothing is kept: arrays are read during the call only.
//
// Positions are in whatever space the program's matrices expect: world units, clip space or the overlay's 1024 by 576.
// Packed colours are those of M_PackColor: red in the lowest byte, alpha in the highest. Angles are radians.
//
// Cost: the data is rebuilt for every draw; these are for a few quads, bulk geometry goes through buffers.
// Bad input: an up vector along the view makes a billboard collapse into its centre; a box with its minimum above its
// maximum still gets its 12 edges.
#pragma once

#include "foundation/Maths.h"
#include "foundation/Types.h"

struct SVertex16 {
    Vec3 Pos;
    UINT32 Color; // packed
};

struct SVertex20 {
    Vec3 Pos;
    Vec2 Tex;
};

struct SVertex24 {
    Vec3 Pos;
    Vec2 Tex;
    UINT32 Color; // packed
};

struct SVertex40 {
    Vec3 Pos;
    Vec3 Tex;
    Vec4 Color;
};

// The GPU reads these as they lie in memory.
static_assert(sizeof(SVertex16) == 16 && sizeof(SVertex20) == 20 && sizeof(SVertex24) == 24 && sizeof(SVertex40) == 40);

// Mode is OpenGL's, such as GL_TRIANGLES.
void DrawVertices16(const SVertex16* Vertices, INT32 Count, UINT32 Mode);
void DrawVertices20(const SVertex20* Vertices, INT32 Count, UINT32 Mode);

// The four corners with the texture upright when Top is above Bottom: (-1, 1, 1, -1) fills clip space.
void DrawQuad(float Left, float Right, float Top, float Bottom, float Z);

// A dark veil: black at an alpha of 79 / 255.
void DrawRect(float Left, float Right, float Top, float Bottom, float Z);

// Twelve edges. Who has many boxes collects their lines and draws them at once.
constexpr INT32 BOX_LINE_VERTICES = 24;
void MakeBoxLines(const BBox& Box, UINT32 Color, SVertex16 (&Out)[BOX_LINE_VERTICES]);
void DrawBoxLines(const BBox& Box, UINT32 Color);

// Each corner is turned about the box's centre by M_QuatRotate.
void DrawRotatedBoxLines(const BBox& Box, const Quat& Rotation, UINT32 Color);

// Count vertices, four to a quad.
void DrawQuads24(const SVertex24* Vertices, INT32 Count);
void DrawQuads40(const SVertex40* Vertices, INT32 Count);

// Sprites that face GCamera. Size is half the width; Angle turns in the plane of the screen. The first is white,
// upright to GCamera.Up and Stretch times as wide as high; the second has Layer as third texture coordinate.
void MakeBillboard24(const Vec3& Centre, float Size, float Angle, float Stretch, SVertex24 (&Out)[4]);
void MakeBillboard40(const Vec3& Centre, float Size, float Angle, SVertex40 (&Out)[4], float Layer, const Vec3& Up,
                     float R, float G, float B, float A);
void DrawBillboard(const Vec3& Centre, float Size, float Angle, float Layer, const Vec3& Up, float R, float G, float B,
                   float A);

// Makes the program ColorOnly current, for lines and faces without a texture, under GViewMatrix and GProjectionMatrix.
void UseColorProgram();

// Axis is of unit length.
Quat QuatFromAxisAngle(const Vec3& Axis, float Angle);
