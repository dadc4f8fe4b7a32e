#include "scene/SpatialGrid.h"

namespace {

// A piece that is a smaller share of its client than this is not followed further down.
constexpr float SLIVER_RATIO = 64.0f;

float Volume(const BBox& Box) {
    const Vec3 Extent = Box.Max - Box.Min;
    return Extent.x * Extent.y * Extent.z;
}

BBox Clip(const BBox& A, const BBox& B) {
    BBox Common;
    for (int Axis = 0; Axis < 3; ++Axis) {
        Common.Min[Axis] = A.Min[Axis] > B.Min[Axis] ? A.Min[Axis] : B.Min[Axis];
        Common.Max[Axis] = A.Max[Axis] < B.Max[Axis] ? A.Max[Axis] : B.Max[Axis];
    }
    return Common;
}

BBox ChildBox(const BBox& Parent, int Child) {
    const Vec3 Middle = (Parent.Min + Parent.Max) * 0.5f;
    BBox Box = Parent;
    for (int Axis = 0; Axis < 3; ++Axis) {
        const bool UpperHalf = Child >> Axis & 1;
        (UpperHalf ? Box.Min : Box.Max)[Axis] = Middle[Axis];
    }
    return Box;
}

void TrySplit(SSpatialNode& Node) {
    if (!(Volume(Node.Box) > Node.MinSize * Node.MinSize * Node.MinSize)) {
        return;
    }
    for (int Child = 0; Child < 8; ++Child) {
        Node.Children[Child] = new SSpatialNode(ChildBox(Node.Box, Child), Node.MinSize);
    }
}

// The comparisons also decide for boxes without volume: 0 goes on, an infinite share stops, a share of 0 / 0 goes on.
bool StopsHere(SSpatialNode& Node, const BBox& Piece, const BBox& Whole) {
    const float PieceVolume = Volume(Piece);
    if (!(0.5f * Volume(Node.Box) > PieceVolume) || Volume(Whole) / PieceVolume > SLIVER_RATIO) {
        return true;
    }
    if (!Node.HasChildren()) {
        TrySplit(Node);
    }
    return !Node.HasChildren();
}

} // namespace

SSpatialNode::~SSpatialNode() {
    for (const SSpatialNode* Child : Children) {
        delete Child;
    }
}

void InsertIntoTree(SSpatialNode* Node, const BBox& Piece, const BBox& Whole, GArray<SClientOccupation>& List) {
    if (!M_BBoxOverlap(Piece, Node->Box)) {
        return;
    }
    if (!StopsHere(*Node, Piece, Whole)) {
        for (SSpatialNode* Child : Node->Children) {
            if (M_BBoxOverlap(Piece, Child->Box)) {
                InsertIntoTree(Child, Clip(Piece, Child->Box), Whole, List);
            }
        }
    }
    List.Add(SClientOccupation{Node, nullptr});
}
