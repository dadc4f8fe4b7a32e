#include "scene/LightClient.h"
#include "scene/Renderable.h"

#include <limits>

namespace {

constexpr float FAR_AWAY = std::numeric_limits<float>::max();

int SignOf(float Value) {
    return Value > 0 ? 1 : Value < 0 ? -1 : 0;
}

// A walk from cell to cell along a ray. Distances are counted in the ray's parameter.
struct SCellWalk {
    INT32 Cell[3];
    int Sign[3];
    float NextBoundary[3];
    float CellLength[3];

    // False when the ray does not start in the grid.
    bool Start(const SSpatialGrid& Grid, const Ray& PickRay);

    // One cell onward; false when there is none, or the ray has no direction to go on in.
    bool Step(const Vec3& Counts);

private:
    void StartAxis(int Axis, float Position, float Component);
    int NearestAxis() const;
};

bool SCellWalk::Start(const SSpatialGrid& Grid, const Ray& PickRay) {
    for (int Axis = 0; Axis < 3; ++Axis) {
        const float Extent = Grid.Box.Max[Axis] - Grid.Box.Min[Axis];
        const float Share = (PickRay.Origin[Axis] - Grid.Box.Min[Axis]) / Extent;
        if (!(Share >= 0 && Share < 1)) {
            return false;
        }
        const float Count = Grid.CellCounts[Axis];
        StartAxis(Axis, Share * Count, PickRay.Dir[Axis] / Extent * Count);
    }
    return true;
}

void SCellWalk::StartAxis(int Axis, float Position, float Component) {
    const float CellFloor = M_Floor(Position);
    Cell[Axis] = static_cast<INT32>(CellFloor);
    Sign[Axis] = SignOf(Component);
    const float Direction = static_cast<float>(Sign[Axis]);
    const bool Moves = Sign[Axis] != 0;
    NextBoundary[Axis] = Moves ? (0.5f * Direction + CellFloor + 0.5f - Position) / Component : FAR_AWAY;
    CellLength[Axis] = Moves ? Direction / Component : 0;
}

// Ties go to z, then y, then x.
int SCellWalk::NearestAxis() const {
    const int Lower = NextBoundary[1] > NextBoundary[0] ? 0 : 1;
    return NextBoundary[2] > NextBoundary[Lower] ? Lower : 2;
}

bool SCellWalk::Step(const Vec3& Counts) {
    const int Axis = NearestAxis();
    if (Sign[Axis] == 0) {
        return false;
    }
    Cell[Axis] += Sign[Axis];
    NextBoundary[Axis] += CellLength[Axis];
    return Cell[Axis] >= 0 && Cell[Axis] < static_cast<INT32>(Counts[Axis]);
}

bool HitsClient(SSpatialClient& Client, const Ray& PickRay, float Radius, float& Distance) {
    if (Client.Kind == CLIENT_MESH) {
        return static_cast<IRenderable&>(Client).TraceRay(PickRay, &Distance, 0);
    }
    if (Client.Kind == CLIENT_LIGHT) {
        return M_RaySphere(PickRay, static_cast<SLightClient&>(Client).Pos, Radius, &Distance) && Distance > 0;
    }
    return false;
}

bool IsNearest(const SRayHits& Found, float Distance) {
    const GMap<float, SSpatialClient*>::Iterator Nearest(Found.Hits);
    return !Nearest.Valid() || Distance < Nearest.Key();
}

void VisitCell(const SClientList& List, const Ray& PickRay, SRayHits& Found) {
    for (auto* Item = List.first; Item; Item = Item->next) {
        float Distance = 0;
        if (HitsClient(*Item->obj, PickRay, Found.Radius, Distance) && IsNearest(Found, Distance)) {
            Found.Hits.Insert(Distance, Item->obj);
        }
    }
}

} // namespace

UINT32 TraceGrid(SSpatialGrid* Grid, const Ray& PickRay, SRayHits* Hits) {
    SCellWalk Walk;
    if (!Grid->CanHold() || !Walk.Start(*Grid, PickRay)) {
        return 0;
    }
    UINT32 StepNumber = 0;
    do {
        VisitCell(Grid->Cell(Walk.Cell[0], Walk.Cell[1], Walk.Cell[2]), PickRay, *Hits);
        ++StepNumber;
    } while (!(StepNumber > Hits->StepAllowance && Hits->Hits.root) && Walk.Step(Grid->CellCounts));
    return 1;
}
