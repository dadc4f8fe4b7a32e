#include "foundation/Diagnostics.h"
#include "scene/LightClient.h"
#include "scene/Renderable.h"

namespace {

// What a query keeps: the kind of client, its type and the stamp that marks it as seen.
struct SKeepAll {
    using Client = SSpatialClient;
    static bool Wants(const SSpatialClient&) { return true; }
    static UINT64& Stamp(Client& Seen) { return Seen.QueryStamp; }
};

struct SKeepMeshes {
    using Client = IRenderable;
    static bool Wants(const SSpatialClient& Found) { return Found.Kind == CLIENT_MESH; }
    static UINT64& Stamp(Client& Seen) { return Seen.RenderStamp; }
};

struct SKeepLights {
    using Client = SLightClient;
    static bool Wants(const SSpatialClient& Found) { return Found.Kind == CLIENT_LIGHT; }
    static UINT64& Stamp(Client& Seen) { return Seen.RenderStamp; }
};

// Copies the planes that cross the box to Crossing and returns how many; the box is not rejected by any.
UINT32 CrossingPlanes(const BBox& Box, const Plane* Planes, UINT32 PlaneCount, Plane* Crossing) {
    UINT32 Count = 0;
    for (UINT32 At = 0; At < PlaneCount; ++At) {
        if (M_PlaneDistance(Planes[At], M_BBoxFarCorner(Box, Planes[At].Normal)) >= 0) {
            Crossing[Count++] = Planes[At];
        }
    }
    return Count;
}

// The node's clients that are wanted, not seen before in this query, and not rejected by a plane. The stamp goes first,
// so that a client rejected in one leaf is not tested again in the next.
template <class KEEP>
void GatherList(const SSpatialNode& Node, GArray<typename KEEP::Client*>& Out, const Plane* Planes, UINT32 PlaneCount) {
    for (auto* Item = Node.Clients.first; Item; Item = Item->next) {
        if (!KEEP::Wants(*Item->obj)) {
            continue;
        }
        auto* Found = static_cast<typename KEEP::Client*>(Item->obj);
        if (KEEP::Stamp(*Found) == GSpatialStamp) {
            continue;
        }
        KEEP::Stamp(*Found) = GSpatialStamp;
        if (!M_BBoxOutsidePlanes(Found->BBox, Planes, static_cast<int>(PlaneCount))) {
            Out.Add(Found);
        }
    }
}

template <class KEEP>
void QueryNode(const SSpatialNode& Node, GArray<typename KEEP::Client*>& Out, const Plane* Planes, UINT32 PlaneCount) {
    if (!Node.HasChildren()) {
        GatherList<KEEP>(Node, Out, Planes, PlaneCount);
        return;
    }
    for (const SSpatialNode* Child : Node.Children) {
        if (Child->Clients.count == 0 || M_BBoxOutsidePlanes(Child->Box, Planes, static_cast<int>(PlaneCount))) {
            continue;
        }
        Plane Crossing[MAX_QUERY_PLANES];
        const UINT32 CrossingCount = CrossingPlanes(Child->Box, Planes, PlaneCount, Crossing);
        if (CrossingCount == 0) {
            GatherList<KEEP>(*Child, Out, nullptr, 0);
        } else {
            QueryNode<KEEP>(*Child, Out, Crossing, CrossingCount);
        }
    }
}

template <class KEEP>
void Query(const SSpatialNode* Node, GArray<typename KEEP::Client*>& Out, const Plane* Planes, UINT32 PlaneCount) {
    G_ASSERT(PlaneCount <= MAX_QUERY_PLANES);
    if (Node) {
        QueryNode<KEEP>(*Node, Out, Planes, PlaneCount);
    }
}

} // namespace

void QueryClients(const SSpatialNode* Node, GArray<SSpatialClient*>* Out, const Plane* Planes, UINT32 PlaneCount) {
    Query<SKeepAll>(Node, *Out, Planes, PlaneCount);
}

void QueryMeshClients(const SSpatialNode* Node, GArray<IRenderable*>* Out, const Plane* Planes, UINT32 PlaneCount) {
    Query<SKeepMeshes>(Node, *Out, Planes, PlaneCount);
}

void QueryLightClients(const SSpatialNode* Node, GArray<SLightClient*>* Out, const Plane* Planes, UINT32 PlaneCount) {
    Query<SKeepLights>(Node, *Out, Planes, PlaneCount);
}
