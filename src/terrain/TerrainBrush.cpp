#include <GL/glew.h>
#include <cmath>

#include "scene/DrawHelpers.h"
#include "terrain/Terrain.h"
#include "terrain/TerrainGrid.h"

namespace {

constexpr float BRUSH_DEPTH_OFFSET = -3.0f; // towards the eye, so that the lines lie over the ground
constexpr float BRUSH_LINE_WIDTH = 5.0f;    // pixels

// The samples that a brush reaches, and how much it weighs at each.
class CFootprint {
public:
    CFootprint(const STerrain& Ground, const Vec3& BrushCentre, float BrushRadius, bool BrushUse3D);

    UINT32 FirstX, EndX, FirstY, EndY; // the ends are exclusive and never the last column or row

    // From 0 outside to 1 at the centre.
    float Weight(UINT32 x, UINT32 y) const;

private:
    const STerrain& Terrain;
    float CentreX, CentreY; // grid units
    float RadiusX, RadiusY; // grid units
    float CentreZ, Radius;  // world units
    bool Use3D;
};

// What is not a number becomes 0.
float ClampToUnit(float Value) {
    if (!(Value > 0)) {
        return 0;
    }
    return Value < 1 ? Value : 1.0f;
}

CFootprint::CFootprint(const STerrain& Ground, const Vec3& BrushCentre, float BrushRadius, bool BrushUse3D)
    : Terrain(Ground), CentreZ(BrushCentre.z), Radius(BrushRadius), Use3D(BrushUse3D) {
    const float Columns = static_cast<float>(Ground.Width);
    const float Rows = static_cast<float>(Ground.Height);
    const Vec2 Centre = GridPosition(Ground, BrushCentre);
    CentreX = Centre.x;
    CentreY = Centre.y;
    RadiusX = BrushRadius / Ground.Extents.x * 0.5f * Columns;
    RadiusY = BrushRadius / Ground.Extents.y * 0.5f * Rows;
    FirstX = ClampToGrid(M_Floor(CentreX - RadiusX), Ground.Width);
    FirstY = ClampToGrid(M_Floor(CentreY - RadiusY), Ground.Height);
    EndX = ClampToGrid(M_Ceil(CentreX + RadiusX), Ground.Width);
    EndY = ClampToGrid(M_Ceil(CentreY + RadiusY), Ground.Height);
}

float CFootprint::Weight(UINT32 x, UINT32 y) const {
    Vec3 Away = {(static_cast<float>(x) - CentreX) / RadiusX, (static_cast<float>(y) - CentreY) / RadiusY, 0};
    if (Use3D) {
        const float GroundZ = Terrain.Heights[y * Terrain.Width + x] * Terrain.Extents.z + Terrain.Position.z;
        Away.z = (GroundZ - CentreZ) / Radius;
    }
    return ClampToUnit(1 - M_Length(Away));
}

SVertex16 BrushVertex(const STerrain& Terrain, const CFootprint& Print, UINT32 x, UINT32 y, float Curve) {
    const float Red = std::pow(Print.Weight(x, y), Curve);
    return {Terrain.GetPoint(x, y), M_PackColor({Red, 0, 0, 1})};
}

void DrawTriangles(const GArray<SVertex16>& Vertices) {
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(BRUSH_DEPTH_OFFSET, BRUSH_DEPTH_OFFSET);
    glLineWidth(BRUSH_LINE_WIDTH);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(SVertex16), &Vertices.Data->Pos);
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(SVertex16), &Vertices.Data->Color);
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(Vertices.count));
    glDisableClientState(GL_COLOR_ARRAY);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_POLYGON_OFFSET_FILL);
    glLineWidth(1.0f);
}

} // namespace

void STerrain::Raise(const Vec3& Centre, float Radius, float Curve, float Amount, bool Use3D) {
    // Flat ground has no heights to change.
    if (MinPartSize == 0 || !(Extents.z > 0)) {
        return;
    }
    const CFootprint Print(*this, Centre, Radius, Use3D);
    for (UINT32 y = Print.FirstY; y < Print.EndY; y++) {
        for (UINT32 x = Print.FirstX; x < Print.EndX; x++) {
            const float Weight = Print.Weight(x, y);
            if (Weight > 0) {
                float& Sample = Heights[y * Width + x];
                Sample = ClampToUnit(Sample + std::pow(Weight, Curve) * Amount / Extents.z);
            }
        }
    }
}

void STerrain::Flatten(const Vec3& Centre, float Radius, float Curve, float Amount, bool Use3D) {
    if (MinPartSize == 0) {
        return;
    }
    const CFootprint Print(*this, Centre, Radius, Use3D);
    GArray<float> Weights;
    float WeightSum = 0;
    float HeightSum = 0;
    for (UINT32 y = Print.FirstY; y < Print.EndY; y++) {
        for (UINT32 x = Print.FirstX; x < Print.EndX; x++) {
            const float Weight = std::pow(Print.Weight(x, y), Curve);
            Weights.Add(Weight);
            WeightSum += Weight;
            HeightSum += Weight * Heights[y * Width + x];
        }
    }
    // Nothing weighs anything, or the curve is so steep that the weights have no sum.
    if (!(WeightSum > 0) || !std::isfinite(WeightSum)) {
        return;
    }
    const float Target = HeightSum / WeightSum;
    const float* Weight = Weights.Data;
    for (UINT32 y = Print.FirstY; y < Print.EndY; y++) {
        for (UINT32 x = Print.FirstX; x < Print.EndX; x++) {
            float& Sample = Heights[y * Width + x];
            Sample = ClampToUnit(Sample + (Target - Sample) * *Weight++ * Amount);
        }
    }
}

void STerrain::DrawBrush(const Vec3& Centre, float Radius, float Curve, bool Use3D) const {
    if (MinPartSize == 0) {
        return;
    }
    const CFootprint Print(*this, Centre, Radius, Use3D);
    GArray<SVertex16> Vertices;
    for (UINT32 y = Print.FirstY; y + 1 < Print.EndY; y++) {
        for (UINT32 x = Print.FirstX; x + 1 < Print.EndX; x++) {
            const SVertex16 Near = BrushVertex(*this, Print, x, y, Curve);
            const SVertex16 Far = BrushVertex(*this, Print, x + 1, y + 1, Curve);
            const SVertex16 Corners[6] = {Near, Far,  BrushVertex(*this, Print, x + 1, y, Curve),
                                          Far,  Near, BrushVertex(*this, Print, x, y + 1, Curve)};
            for (const SVertex16& Corner : Corners) {
                Vertices.Add(Corner);
            }
        }
    }
    if (Vertices.count) {
        DrawTriangles(Vertices);
    }
}
