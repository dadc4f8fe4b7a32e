// Solid shapes for models in the making: lofts along a row of sections, boxes, flat sheets.
//
// Space: the model's own, +Z up. Triangles are listed with their corners counter-clockwise seen from outside; writers
// turn them round where a format wants it. Every call names the cell of the texture's atlas of 4 by 4 that it is
// painted with; u runs round a loft, v along it, v = 0 in the first row of the picture.
// Each vertex follows two bones; models without a skeleton leave both at 0.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"
#include "foundation/Vector.h"

constexpr int ATLAS_CELLS = 4; // along each side

// Part of a cell along each edge that models do not show, so that reads keep away from the neighbouring cells, also in
// smaller mip levels.
constexpr float SHAPE_CELL_MARGIN = 0.06f;

struct SShapeVertex {
    Vec3 Position;
    Vec3 Normal;
    Vec2 UV;
    UINT8 BoneA = 0;
    UINT8 BoneB = 0;
    float PartB = 0; // 0 is all BoneA
};

// A cross-section of a loft: an ellipse about Centre.
struct SSection {
    Vec3 Centre;
    float Width;  // half, along the loft's Side
    float Height; // half, at a right angle to it
    UINT8 BoneA = 0;
    UINT8 BoneB = 0;
    float PartB = 0;
};

class CShape {
public:
    // Side is any vector across the row of sections. Both ends are closed. Squareness 0 is an ellipse, 1 nearly a box.
    void AddLoft(const GArray<SSection>& Sections, const Vec3& Side, int Sides, int Cell, float Squareness = 0);

    // Axes are half edges and may be of any directions that make a right-handed set. Six flat faces.
    void AddBox(const Vec3& Centre, const Vec3& AxisX, const Vec3& AxisY, const Vec3& AxisZ, int Cell, UINT8 Bone = 0);

    // A quad with both faces; the one behind may show another cell.
    void AddSheet(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, int Cell, int CellBehind = -1);

    GArray<SShapeVertex> Vertices;
    GArray<UINT32> Indices;

private:
    void AddTriangle(UINT32 a, UINT32 b, UINT32 c);
    void AddQuad(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, int Cell, UINT8 Bone);
    void SmoothFrom(UINT32 First, UINT32 FirstIndex);
};

// Bends a vertex list by noise: a rock out of a ball. Amount in model units, Scale in features per unit.
void RoughenShape(CShape& Shape, float Amount, float Scale, UINT32 Seed);
