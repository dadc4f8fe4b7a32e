// The frame lists of a level: which meshes are in view, as sorted draw records.
#include "scene/Renderable.h"
#include "world/GameLevel.h"

namespace {

// A record at the end of the array, empty but for the storage it had. Growing by doubling keeps whole pictures free of
// allocations once the list was long enough.
SRenderData& NewRecord(GArray<SRenderData>& Records) {
    if (Records.count == Records.Capacity) {
        Records.Reserve(2 * Records.count + 1);
    }
    Records.Resize(Records.count + 1);
    return Records[Records.count - 1];
}

void AddPart(GArray<SRenderData>& Records, IRenderable& Client, UINT32 Flags, UINT32 Id, float BlendDelta) {
    SRenderData& Record = NewRecord(Records);
    if (!Client.GetRenderData(Flags, Id, &Record) || (Record.Flags & RENDER_HIDDEN)) {
        Records.Resize(Records.count - 1);
        return;
    }
    Record.SortKey = RenderSortKey(Record);
    Record.PartId = Id;
    Record.Client = &Client;
    Client.BlendFactor = BlendDelta;
    Client.Update();
}

} // namespace

void CLevel::BuildDrawList(bool OrthoPlanes, float BlendDelta, bool LightList, bool ShadowFlags) {
    ++GSpatialStamp;
    Frustum View;
    if (OrthoPlanes) {
        M_CameraOrthoFrustum(View);
    } else {
        M_CameraFrustum(View);
    }
    GArray<SDrawEntry>& Entries = LightList ? LightEntries : SceneEntries;
    GArray<SRenderData>& Records = LightList ? LightRecords : SceneRecords;
    VisibleClients.Resize(0);
    Entries.Resize(0);
    Records.Resize(0);

    QueryMeshClients(Grid->Root, &VisibleClients, View.Planes, MAX_QUERY_PLANES);
    const UINT32 Flags = ShadowFlags ? 1 : 0;
    for (IRenderable* Client : VisibleClients) {
        const UINT32 PartCount = Client->GetPartCount(Flags);
        for (UINT32 Id = 0; Id < PartCount; ++Id) {
            AddPart(Records, *Client, Flags, Id, BlendDelta);
        }
    }
    // The records stay where they are only from here on.
    for (const SRenderData& Record : Records) {
        Entries.Add({Record.SortKey, &Record});
    }
    SortDrawEntries(Entries);
}
