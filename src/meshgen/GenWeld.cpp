#include "meshgen/GenTopology.h"

namespace {

// Squared distance in the texture above which two UVs are two.
constexpr float SAME_UV = 0.000000000099999994f;

bool DifferInUV(const SMeshVertex& a, const SMeshVertex& b) {
    const float u = a.UV.x - b.UV.x;
    const float v = a.UV.y - b.UV.y;
    return u * u + v * v > SAME_UV;
}

// Takes out the vertices that are gone; the others keep their order.
void Compact(SGenPart& Part, const GArray<UINT8>& Gone) {
    GArray<UINT32> NewIndex;
    NewIndex.Resize(Part.Vertices.count);
    UINT32 Kept = 0;
    for (UINT32 i = 0; i < Part.Vertices.count; ++i) {
        NewIndex[i] = Kept;
        if (!Gone[i]) {
            Part.Vertices[Kept++] = Part.Vertices[i];
        }
    }
    Part.Vertices.Resize(Kept);
    for (UINT32& Index : Part.Indices) {
        Index = NewIndex[Index];
    }
}

} // namespace

// A merge gives the kept vertex more triangles, so one that stood back to back with it, or did not, may do now: the
// twins are gone through from the first again after each.
void SGenPart::Weld(bool CheckUV) {
    CGenTopology Topology(*this);
    GArray<UINT8> Gone;
    Gone.Resize(Vertices.count);
    GArray<UINT32> Twins;
    for (UINT32 i = 0; i < Vertices.count; ++i) {
        if (Gone[i]) {
            continue;
        }
        Topology.FindTwins(i, Twins);
        for (UINT32 At = 0; At < Twins.count;) {
            const UINT32 j = Twins[At];
            if (j <= i || Gone[j] || (CheckUV && DifferInUV(Vertices[i], Vertices[j])) || Topology.Opposed(i, j)) {
                ++At;
                continue;
            }
            Topology.MergeInto(i, j);
            Gone[j] = 1;
            At = 0;
        }
    }
    Compact(*this, Gone);
}
