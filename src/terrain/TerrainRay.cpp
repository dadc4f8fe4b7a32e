#include <limits>

#include "terrain/Terrain.h"
#include "terrain/TerrainGrid.h"

namespace {

// World units. No hit lies farther from a start over the largest terrain, and longer rays would lose their direction
// in the rounding of their end.
constexpr float MAX_RAY_LENGTH = 4 * TERRAIN_MAX_EXTENT;

struct SCell {
    float x, y; // whole numbers, of any size and sign
    bool operator==(const SCell&) const = default;
};

// One axis of the walk from cell to cell: how far along the ray the next boundary is.
struct SAxisWalk {
    float Distance;
    float Step;
    float CellStep;

    SAxisWalk(float Start, float Cell, float Direction) {
        CellStep = Direction > 0 ? 1.0f : -1.0f;
        Distance = std::numeric_limits<float>::max();
        Step = 0;
        if (Direction != 0) {
            Distance = ((Direction > 0 ? Cell + 1 : Cell) - Start) / Direction;
            Step = 1 / M_Abs(Direction);
        }
    }
};

// True if the triangle is hit in front of the ray's origin.
bool HitAhead(const Vec3& a, const Vec3& b, const Vec3& c, const Ray& TheRay, float& Distance) {
    return M_RayTriangle(a, b, c, TheRay, &Distance) && Distance >= 0;
}

bool InGrid(const STerrain& Terrain, const SCell& Cell) {
    return Cell.x >= 0 && Cell.y >= 0 && Cell.x < static_cast<float>(Terrain.Width - 1) &&
           Cell.y < static_cast<float>(Terrain.Height - 1);
}

float TestCell(const STerrain& Terrain, const SCell& Cell, const Ray& TheRay, float MaxDist) {
    if (!InGrid(Terrain, Cell)) {
        return TERRAIN_RAY_OUTSIDE;
    }
    const UINT32 x = static_cast<UINT32>(Cell.x);
    const UINT32 y = static_cast<UINT32>(Cell.y);
    const Vec3 Near = Terrain.GetPoint(x, y);
    const Vec3 Far = Terrain.GetPoint(x + 1, y + 1);
    float Distance = 0;
    if (!HitAhead(Near, Far, Terrain.GetPoint(x + 1, y), TheRay, Distance) &&
        !HitAhead(Far, Near, Terrain.GetPoint(x, y + 1), TheRay, Distance)) {
        return TERRAIN_RAY_MISS;
    }
    return Distance > MaxDist ? TERRAIN_RAY_BEYOND : Distance;
}

// The direction in which the ray crosses the square of 0 to 1 that the grid spans.
Vec3 PlaneDirection(const STerrain& Terrain, const Vec2& Start, const Vec2& End) {
    Vec3 Direction = {(End.x - Start.x) / static_cast<float>(Terrain.Width),
                      (End.y - Start.y) / static_cast<float>(Terrain.Height), 0};
    M_Normalize(Direction);
    return Direction;
}

} // namespace

float STerrain::TraceRay(const Ray& TheRay, float MaxDist) const {
    if (MinPartSize == 0) {
        return TERRAIN_RAY_OUTSIDE;
    }
    const float Length = MaxDist < MAX_RAY_LENGTH ? MaxDist : MAX_RAY_LENGTH;
    const Vec2 Start = GridPosition(*this, TheRay.Origin);
    const Vec2 End = GridPosition(*this, TheRay.Origin + TheRay.Dir * Length);
    SCell Cell = {M_Floor(Start.x), M_Floor(Start.y)};
    const SCell EndCell = {M_Floor(End.x), M_Floor(End.y)};
    float Result = TestCell(*this, Cell, TheRay, MaxDist);
    if (Cell == EndCell || Result != TERRAIN_RAY_MISS) {
        return Result;
    }
    const Vec3 Direction = PlaneDirection(*this, Start, End);
    SAxisWalk WalkX(Start.x, Cell.x, Direction.x);
    SAxisWalk WalkY(Start.y, Cell.y, Direction.y);
    do {
        const bool AlongY = !(WalkY.Distance > WalkX.Distance);
        SAxisWalk& Walk = AlongY ? WalkY : WalkX;
        (AlongY ? Cell.y : Cell.x) += Walk.CellStep;
        Walk.Distance += Walk.Step;
        if (!InGrid(*this, Cell)) {
            return TERRAIN_RAY_MISS;
        }
        Result = TestCell(*this, Cell, TheRay, MaxDist);
        if (Result >= 0) {
            return Result;
        }
        if (Result <= TERRAIN_RAY_BEYOND) {
            return TERRAIN_RAY_BEYOND;
        }
    } while (!(Cell == EndCell));
    return Result;
}
