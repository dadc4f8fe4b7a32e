#include "scene/RenderData.h"

// The fields that the key takes from a record are cut to their lowest bits: a group may hold two buffers or textures,
// which costs state changes and nothing else.
static constexpr UINT64 BITS_15 = 0x7FFF;
static constexpr UINT64 BITS_16 = 0xFFFF;

UINT64 RenderSortKey(const SRenderData& Record) {
    const bool Transparent = (Record.Flags & RENDER_TRANSPARENT) != 0;
    const UINT64 Depth = Transparent ? RENDER_DEPTH_MAX - Record.Depth : Record.Depth;
    UINT64 Key = UINT64{Transparent} << 63;
    Key |= (Record.PS.Length() & BITS_15) << 48;
    if (Record.VertexBuffer) {
        Key |= UINT64{1} << 47 | (Record.VertexBuffer & BITS_15) << 32;
    } else {
        Key |= (Record.PositionOffset & BITS_15) << 32;
    }
    Key |= (Record.Texture0 & BITS_16) << 16;
    Key |= UINT64{!Transparent} << 15;
    return Key | (Depth & BITS_15);
}

void SortDrawEntries(GArray<SDrawEntry>& Entries) {
    if (Entries.count < 2) {
        return;
    }
    GCombSort(Entries, [](const SDrawEntry& Lower, const SDrawEntry& Upper) { return Upper.SortKey < Lower.SortKey; });
}
