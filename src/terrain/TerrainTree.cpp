#include "foundation/Diagnostics.h"
#include "terrain/Terrain.h"

namespace {

constexpr UINT32 MAX_VIEW_LOD = 5;
constexpr float LODS_PER_RANGE = 4.0f; // levels between the eye and the end of the range

float Low(float a, float b) {
    return a < b ? a : b;
}

float High(float a, float b) {
    return a > b ? a : b;
}

BBox Union(const BBox& a, const BBox& b) {
    return {{Low(a.Min.x, b.Min.x), Low(a.Min.y, b.Min.y), Low(a.Min.z, b.Min.z)},
            {High(a.Max.x, b.Max.x), High(a.Max.y, b.Max.y), High(a.Max.z, b.Max.z)}};
}

// The whole part of a place in cells, in leaves.
UINT32 LeafAt(float Cells, UINT32 PartSize) {
    return static_cast<UINT32>(Cells / static_cast<float>(PartSize));
}

UINT32 FindLeaf(const STerrain& Terrain, const BBox& Box) {
    const Vec3 Centre = (Box.Min + Box.Max) * 0.5f - Terrain.Position;
    const float CellsX = static_cast<float>(Terrain.Width - 1) * (Centre.x / (2 * Terrain.Extents.x) + 0.5f);
    const float CellsY = static_cast<float>(Terrain.Height - 1) * (Centre.y / (2 * Terrain.Extents.y) + 0.5f);
    const UINT32 Column = LeafAt(CellsX, Terrain.MinPartSize);
    const UINT32 Row = LeafAt(CellsY, Terrain.MinPartSize);
    return Row * (Terrain.Width - 1) / Terrain.MinPartSize + Column;
}

// Around all points of the leaf that begins at (x, y). Its corners bound it in X and Y, its heights in Z.
BBox LeafBox(const STerrain& Terrain, UINT32 x, UINT32 y) {
    const UINT32 Part = Terrain.MinPartSize;
    float MinHeight = Terrain.Heights[y * Terrain.Width + x];
    float MaxHeight = MinHeight;
    for (UINT32 j = 0; j <= Part; j++) {
        const float* Row = Terrain.Heights + (y + j) * Terrain.Width + x;
        for (UINT32 i = 0; i <= Part; i++) {
            MinHeight = Low(MinHeight, Row[i]);
            MaxHeight = High(MaxHeight, Row[i]);
        }
    }
    BBox Box = {Terrain.GetPoint(x, y), Terrain.GetPoint(x + Part, y + Part)};
    Box.Min.z = MinHeight * Terrain.Extents.z + Terrain.Position.z;
    Box.Max.z = MaxHeight * Terrain.Extents.z + Terrain.Position.z;
    return Box;
}

BBox Quarter(const BBox& Box, bool HighX, bool HighY) {
    const Vec3 Centre = (Box.Min + Box.Max) * 0.5f;
    BBox Out = Box;
    (HighX ? Out.Min.x : Out.Max.x) = Centre.x;
    (HighY ? Out.Min.y : Out.Max.y) = Centre.y;
    return Out;
}

// Box is that of the plain grid; the node's own is tight around the heights.
STerrainNode* BuildNode(STerrain* Terrain, const BBox& Box) {
    STerrainNode* Node = new STerrainNode;
    Node->Terrain = Terrain;
    const float Cells =
        M_Floor((Box.Max.x - Box.Min.x) * static_cast<float>(Terrain->Width - 1) / (2 * Terrain->Extents.x));
    if (Cells > static_cast<float>(Terrain->MinPartSize)) {
        for (UINT32 i = 0; i < 4; i++) {
            Node->Child[i] = BuildNode(Terrain, Quarter(Box, i & 2u, i & 1u));
            Node->Box = i == 0 ? Node->Child[i]->Box : Union(Node->Box, Node->Child[i]->Box);
        }
        return Node;
    }
    const UINT32 LeafID = FindLeaf(*Terrain, Box);
    G_ASSERT(LeafID < (Terrain->Width - 1) / Terrain->MinPartSize * (Terrain->Height - 1) / Terrain->MinPartSize);
    Node->LeafID = LeafID;
    Node->Box = Terrain->Leaves[LeafID].Box;
    return Node;
}

void FreeNode(STerrainNode* Node) {
    if (!Node) {
        return;
    }
    for (STerrainNode* Child : Node->Child) {
        FreeNode(Child);
    }
    delete Node;
}

bool IsLeafNode(const STerrainNode& Node) {
    return Node.Child[0] == nullptr;
}

void MarkLeaves(STerrainNode& Node, bool On) {
    if (IsLeafNode(Node)) {
        G_ASSERT(Node.LeafID != (UINT32)-1);
        Node.Terrain->Leaves[Node.LeafID].SetVisible(On);
        return;
    }
    for (STerrainNode* Child : Node.Child) {
        MarkLeaves(*Child, On);
    }
}

void MarkVisible(STerrainNode& Node, const Frustum& View) {
    if (M_BBoxOutsideFrustum(Node.Box, View)) {
        MarkLeaves(Node, false);
        return;
    }
    if (IsLeafNode(Node)) {
        MarkLeaves(Node, true);
        return;
    }
    for (STerrainNode* Child : Node.Child) {
        MarkVisible(*Child, View);
    }
}

UINT32 LodAt(float Distance, float Range) {
    const float Lod = Distance / Range * LODS_PER_RANGE;
    // A range of 0 makes infinity, or no number at all.
    if (!(Lod < static_cast<float>(MAX_VIEW_LOD))) {
        return MAX_VIEW_LOD;
    }
    return Lod > 0 ? static_cast<UINT32>(Lod) : 0;
}

} // namespace

void STerrain::BuildLeaves() {
    delete[] Leaves;
    Leaves = nullptr;
    const UINT32 Columns = LeafColumns();
    const UINT32 Rows = LeafRows();
    if (Columns * Rows == 0) {
        return;
    }
    Leaves = new STerrainLeaf[Columns * Rows];
    for (UINT32 i = 0; i < Columns * Rows; i++) {
        Leaves[i].Box = LeafBox(*this, i % Columns * MinPartSize, i / Columns * MinPartSize);
    }
}

void STerrain::BuildTree() {
    FreeNode(Root);
    Root = nullptr;
    if (Leaves && HasUsableExtents()) {
        Root = BuildNode(this, {Position - Extents, Position + Extents});
    }
}

void STerrain::FreeTree() {
    FreeNode(Root);
    Root = nullptr;
    delete[] Leaves;
    Leaves = nullptr;
}

void STerrain::RebuildTree() {
    FreeTree();
    BuildLeaves();
    BuildTree();
}

bool STerrain::Visible(bool OrthoPlanes) {
    if (!Root) {
        return false;
    }
    Frustum View;
    if (OrthoPlanes) {
        M_CameraOrthoFrustum(View);
    } else {
        M_CameraFrustum(View);
    }
    MarkVisible(*Root, View);
    SetLods(GCamera.Eye, GCamera.Far);
    for (UINT32 i = 0; i < LeafColumns() * LeafRows(); i++) {
        if (Leaves[i].IsVisible()) {
            return true;
        }
    }
    return false;
}

void STerrain::SetLods(const Vec3& From, float Range) {
    if (!Leaves) {
        return;
    }
    for (UINT32 i = 0; i < LeafColumns() * LeafRows(); i++) {
        if (Leaves[i].IsVisible()) {
            Leaves[i].SetLod(LodAt(M_BBoxDistance(Leaves[i].Box, From), Range));
        }
    }
}
