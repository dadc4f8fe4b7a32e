#include "scene/SpatialGrid.h"

#include "foundation/Diagnostics.h"

UINT64 GSpatialStamp = 0;

namespace {

// A node splits while it is larger than a cube of this many cells a side.
constexpr float NODE_CELLS = 9.0f;
constexpr float AXES = 3.0f;

// Far above any use, far below where a cell index leaves 32 bits.
constexpr float MAX_CELLS = 134217728.0f;

// Cells are cleaned by the block: small enough that a block with one client costs little, large enough that the flags
// of 8,000,000 cells are nothing.
constexpr UINT32 CELLS_PER_BLOCK = 256;

bool HasVolume(const BBox& Box) {
    return Box.Max.x > Box.Min.x && Box.Max.y > Box.Min.y && Box.Max.z > Box.Min.z;
}

// None unless there is at least one along each axis.
UINT32 CellTotal(const Vec3& Counts) {
    if (!(Counts.x >= 1 && Counts.y >= 1 && Counts.z >= 1)) {
        return 0;
    }
    const float Total = Counts.x * Counts.y * Counts.z;
    G_ASSERT(Total <= MAX_CELLS);
    return static_cast<UINT32>(Total);
}

// The cell of a point, drawn to the nearest cell of the grid; true if the point lies in the grid as it is. A coordinate
// that is no number comes out as cell 0 and not inside.
bool CellOfPoint(const SSpatialGrid& Grid, const Vec3& Point, Vec3& Cell) {
    bool Inside = true;
    for (int Axis = 0; Axis < 3; ++Axis) {
        const float Extent = Grid.Box.Max[Axis] - Grid.Box.Min[Axis];
        const float Share = (Point[Axis] - Grid.Box.Min[Axis]) / Extent;
        const float Last = Grid.CellCounts[Axis] - 1;
        Cell[Axis] = M_Floor(Grid.CellCounts[Axis] * Share);
        if (!(Cell[Axis] >= 0)) {
            Cell[Axis] = 0;
            Inside = false;
        } else if (Cell[Axis] > Last) {
            Cell[Axis] = Last;
            Inside = false;
        }
    }
    return Inside;
}

template <class VISIT>
void ForCellRange(const SSpatialClient& Client, VISIT Visit) {
    for (float Z = Client.CellLow.z; Z <= Client.CellHigh.z; Z += 1.0f) {
        for (float Y = Client.CellLow.y; Y <= Client.CellHigh.y; Y += 1.0f) {
            for (float X = Client.CellLow.x; X <= Client.CellHigh.x; X += 1.0f) {
                Visit(static_cast<INT32>(X), static_cast<INT32>(Y), static_cast<INT32>(Z));
            }
        }
    }
}

void UnlinkFromCell(SClientList& List, const SSpatialClient* Client) {
    for (auto* Item = List.first; Item; Item = Item->next) {
        if (Item->obj == Client) {
            List.Unlink(Item);
            return;
        }
    }
    FatalError("RemoveClient: Spatial client not found in grid node list!\n");
}

void EnterNodes(SSpatialNode* Root, SSpatialClient* c) {
    InsertIntoTree(Root, c->BBox, c->BBox, c->ocp);
    for (SClientOccupation& ocp : c->ocp) {
        G_ASSERT(!ocp.Node->Clients.last || ocp.Node->Clients.last->obj != c);
        ocp.Item = ocp.Node->Clients.Append(c);
    }
}

void EnterCells(SSpatialGrid& Grid, SSpatialClient* c) {
    const bool LowInside = CellOfPoint(Grid, c->BBox.Min, c->CellLow);
    const bool HighInside = CellOfPoint(Grid, c->BBox.Max, c->CellHigh);
    if (!LowInside && !HighInside) {
        return;
    }
    c->InCells = 1;
    ForCellRange(*c, [&](INT32 X, INT32 Y, INT32 Z) { Grid.CellToFill(X, Y, Z).Append(c); });
}

} // namespace

void SSpatialGrid::Init(const BBox& NewBox, const Vec3& NewCellCounts) {
    Free();
    Box = NewBox;
    CellCounts = NewCellCounts;
    if (HasVolume(Box)) {
        Cells.Resize(CellTotal(CellCounts));
        FilledBlocks.Resize((Cells.count + CELLS_PER_BLOCK - 1) / CELLS_PER_BLOCK);
    }
    const Vec3 Extent = Box.Max - Box.Min;
    const float MeanCell = (Extent.x / CellCounts.x + Extent.y / CellCounts.y + Extent.z / CellCounts.z) / AXES;
    Root = new SSpatialNode(Box, NODE_CELLS * MeanCell);
}

void SSpatialGrid::Free() {
    delete Root;
    Root = nullptr;
    for (UINT32 Block = 0; Block < FilledBlocks.count; ++Block) {
        if (!FilledBlocks[Block]) {
            continue;
        }
        const UINT32 End = (Block + 1) * CELLS_PER_BLOCK;
        for (UINT32 At = Block * CELLS_PER_BLOCK; At < End && At < Cells.count; ++At) {
            Cells[At].Clear();
        }
    }
    FilledBlocks.Clear();
    Cells.FreeEmpty();
}

bool SSpatialGrid::CanHold() const {
    return Cells.count > 0;
}

UINT32 SSpatialGrid::CellIndex(INT32 X, INT32 Y, INT32 Z) const {
    const INT32 Row = static_cast<INT32>(CellCounts.x);
    const INT32 Layer = static_cast<INT32>(CellCounts.x * CellCounts.y);
    return static_cast<UINT32>(Z * Layer + Y * Row + X);
}

SClientList& SSpatialGrid::CellToFill(INT32 X, INT32 Y, INT32 Z) {
    const UINT32 At = CellIndex(X, Y, Z);
    SClientList& List = Cells[At];
    FilledBlocks[At / CELLS_PER_BLOCK] = 1;
    return List;
}

void AddClient(SSpatialGrid* Grid, SSpatialClient* c) {
    if (!Grid->CanHold()) {
        return;
    }
    EnterNodes(Grid->Root, c);
    EnterCells(*Grid, c);
}

void RemoveClient(SSpatialGrid* Grid, SSpatialClient* c) {
    for (const SClientOccupation& ocp : c->ocp) {
        ocp.Node->Clients.Unlink(ocp.Item);
    }
    // Keeps its buffer: most removals are the first half of a move.
    c->ocp.Resize(0);
    if (!c->InCells) {
        return;
    }
    ForCellRange(*c, [&](INT32 X, INT32 Y, INT32 Z) { UnlinkFromCell(Grid->Cell(X, Y, Z), c); });
    c->InCells = 0;
}
