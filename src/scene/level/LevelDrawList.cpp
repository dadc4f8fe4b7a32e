// The frame lists of a level: which meshes are in view, as sorted draw records.
#include "scene/Renderable.h"
#include "world/GameLevel.h"

namespace {

// The records of the list under construction. Those of the last list stay alive to be filled anew, so that a record
// costs neither construction nor destruction; growing by doubling keeps whole pictures free of allocations once the
// list was long enough.
struct SRecordWriter {
    GArray<SRenderData>& Records;
    UINT32 Used = 0;

    SRenderData& Next() {
        if (Used == Records.count) {
            if (Used == Records.Capacity) {
                Records.Reserve(2 * Used + 1);
            }
            Records.Resize(Used + 1);
        }
        return Records[Used];
    }
};

void AddPart(SRecordWriter& Writer, IRenderable& Client, UINT32 Flags, UINT32 Id, float BlendDelta) {
    SRenderData& Record = Writer.Next();
    if (!Client.GetRenderData(Flags, Id, &Record) || (Record.Flags & RENDER_HIDDEN)) {
        return;
    }
    ++Writer.Used;
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
    SRecordWriter Writer = {Records};

    QueryMeshClients(Grid->Root, &VisibleClients, View.Planes, MAX_QUERY_PLANES);
    const UINT32 Flags = ShadowFlags ? 1 : 0;
    for (IRenderable* Client : VisibleClients) {
        if (ShadowFlags && M_BBoxOutsidePlanes(Client->BBox, CasterPlanes.Data, static_cast<int>(CasterPlanes.count))) {
            continue;
        }
        const UINT32 PartCount = Client->GetPartCount(Flags);
        for (UINT32 Id = 0; Id < PartCount; ++Id) {
            AddPart(Writer, *Client, Flags, Id, BlendDelta);
        }
    }
    Records.Resize(Writer.Used);
    // The records stay where they are only from here on.
    for (const SRenderData& Record : Records) {
        Entries.Add({Record.SortKey, &Record});
    }
    SortDrawEntries(Entries);
}
