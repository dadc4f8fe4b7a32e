#include "Shape.h"

#include "Noise.h"

#include <cmath>

namespace {

constexpr float FULL_CIRCLE = 6.2831853f;

constexpr float SAME_PLACE = 1e-4f;

Vec2 CellUV(int Cell, float u, float v) {
    const float Size = 1.0f / ATLAS_CELLS;
    const auto Inside = [](float t) { return SHAPE_CELL_MARGIN + (1 - 2 * SHAPE_CELL_MARGIN) * t; };
    return {(static_cast<float>(Cell % ATLAS_CELLS) + Inside(u)) * Size,
            (static_cast<float>(Cell / ATLAS_CELLS) + Inside(v)) * Size};
}

float SignedPower(float Value, float Power) {
    return std::copysign(std::pow(std::fabs(Value), Power), Value);
}

SShapeVertex SectionVertex(const SSection& Section, const Vec3& Position, const Vec2& UV) {
    return {Position, {}, UV, Section.BoneA, Section.BoneB, Section.PartB};
}

Vec3 AlongAt(const GArray<SSection>& Sections, UINT32 i) {
    const Vec3& Before = Sections[i > 0 ? i - 1 : 0].Centre;
    const Vec3& After = Sections[i + 1 < Sections.count ? i + 1 : i].Centre;
    return M_Normalized(After - Before);
}

} // namespace

void CShape::AddTriangle(UINT32 a, UINT32 b, UINT32 c) {
    Indices.Add(a);
    Indices.Add(b);
    Indices.Add(c);
}

void CShape::AddLoft(const GArray<SSection>& Sections, const Vec3& Side, int Sides, int Cell, float Squareness) {
    const UINT32 First = Vertices.count;
    const UINT32 FirstIndex = Indices.count;
    const UINT32 Row = static_cast<UINT32>(Sides) + 1;
    const float Power = 1 - 0.7f * Squareness;
    for (UINT32 i = 0; i < Sections.count; ++i) {
        const SSection& Section = Sections[i];
        const Vec3 Along = AlongAt(Sections, i);
        const Vec3 X = M_Normalized(Side - Along * M_Dot(Side, Along));
        const Vec3 Y = M_Cross(Along, X);
        const float v = static_cast<float>(i) / static_cast<float>(Sections.count - 1);
        for (UINT32 j = 0; j < Row; ++j) {
            const float u = static_cast<float>(j) / static_cast<float>(Sides);
            const float Angle =
                FULL_CIRCLE * (static_cast<float>(j % static_cast<UINT32>(Sides)) + 0.5f) / static_cast<float>(Sides);
            const Vec3 Offset = X * (Section.Width * SignedPower(std::cos(Angle), Power)) +
                                Y * (Section.Height * SignedPower(std::sin(Angle), Power));
            Vertices.Add(SectionVertex(Section, Section.Centre + Offset, CellUV(Cell, u, v)));
        }
    }
    for (UINT32 i = 0; i + 1 < Sections.count; ++i) {
        for (UINT32 j = 0; j + 1 < Row; ++j) {
            const UINT32 a = First + i * Row + j;
            AddTriangle(a, a + 1, a + Row + 1);
            AddTriangle(a, a + Row + 1, a + Row);
        }
    }
    for (const bool Top : {false, true}) {
        const SSection& Section = Sections[Top ? Sections.count - 1 : 0];
        const UINT32 Ring = First + (Top ? (Sections.count - 1) * Row : 0);
        const UINT32 Middle = Vertices.count;
        Vertices.Add(SectionVertex(Section, Section.Centre, CellUV(Cell, 0.5f, Top ? 1.0f : 0.0f)));
        for (UINT32 j = 0; j + 1 < Row; ++j) {
            AddTriangle(Middle, Top ? Ring + j : Ring + j + 1, Top ? Ring + j + 1 : Ring + j);
        }
    }
    SmoothFrom(First, FirstIndex);
}

// Normals of one shape, smooth over vertices that share a place.
void CShape::SmoothFrom(UINT32 First, UINT32 FirstIndex) {
    GArray<Vec3> Sums;
    Sums.Resize(Vertices.count - First);
    for (UINT32 i = FirstIndex; i < Indices.count; i += 3) {
        const Vec3& a = Vertices[Indices[i]].Position;
        const Vec3 Normal = M_Cross(Vertices[Indices[i + 1]].Position - a, Vertices[Indices[i + 2]].Position - a);
        for (UINT32 k = i; k < i + 3; ++k) {
            Sums[Indices[k] - First] += Normal;
        }
    }
    for (UINT32 i = First; i < Vertices.count; ++i) {
        Vec3 Normal;
        for (UINT32 j = First; j < Vertices.count; ++j) {
            if (M_Length(Vertices[i].Position - Vertices[j].Position) < SAME_PLACE) {
                Normal += Sums[j - First];
            }
        }
        Vertices[i].Normal = M_Normalized(Normal);
    }
}

void CShape::AddQuad(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, int Cell, UINT8 Bone) {
    const UINT32 First = Vertices.count;
    const Vec3 Normal = M_Normalized(M_Cross(b - a, c - a));
    const Vec3 Corners[4] = {a, b, c, d};
    const Vec2 UVs[4] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
    for (int i = 0; i < 4; ++i) {
        Vertices.Add({Corners[i], Normal, CellUV(Cell, UVs[i].x, UVs[i].y), Bone, Bone, 0});
    }
    AddTriangle(First, First + 1, First + 2);
    AddTriangle(First, First + 2, First + 3);
}

void CShape::AddBox(const Vec3& Centre, const Vec3& AxisX, const Vec3& AxisY, const Vec3& AxisZ, int Cell, UINT8 Bone) {
    const Vec3 Axes[3] = {AxisX, AxisY, AxisZ};
    for (int i = 0; i < 3; ++i) {
        for (const float Sign : {-1.0f, 1.0f}) {
            const Vec3 Face = Centre + Axes[i] * Sign;
            // The third axis stands upright in the picture wherever it lies in the face.
            const Vec3 Up = Axes[i == 2 ? 1 : 2];
            const Vec3 Right = Axes[i == 0 ? 1 : 0] * (i == 1 ? -Sign : Sign);
            AddQuad(Face - Right - Up, Face + Right - Up, Face + Right + Up, Face - Right + Up, Cell, Bone);
        }
    }
}

void CShape::AddSheet(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, int Cell, int CellBehind) {
    AddQuad(a, b, c, d, Cell, 0);
    AddQuad(b, a, d, c, CellBehind < 0 ? Cell : CellBehind, 0);
}

void RoughenShape(CShape& Shape, float Amount, float Scale, UINT32 Seed) {
    for (SShapeVertex& Vertex : Shape.Vertices) {
        const Vec3 p = Vertex.Position * Scale;
        const float Push = NoiseFbm(p.x + 0.7f * p.z, p.y - 0.6f * p.z, 3, Seed);
        Vertex.Position += Vertex.Normal * (Amount * Push);
    }
}
