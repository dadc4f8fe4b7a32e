// SRenderData: the draw record. One is filled for one part of one client in one picture.
//
// It says everything the draw loop needs but the matrices and the uniforms, which it asks the client for. Records lie
// in the level's frame lists and live until the next list is built; buffers and textures in them belong to the mesh.
// Offsets are in bytes from the start of their buffer; NO_OFFSET means that the attribute is absent.
// Cost: a copy copies two short strings.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

class IRenderable;

constexpr UINT32 NO_OFFSET = ~UINT32{0};

// Bits of SRenderData::Flags and of SMeshClient::RenderFlags.
constexpr UINT8 RENDER_HIDDEN = 1;      // the record is dropped
constexpr UINT8 RENDER_TRANSPARENT = 2; // blended, and drawn behind all others, far ones first
constexpr UINT8 RENDER_ADDITIVE = 4;    // blend function ONE, ONE
constexpr UINT8 RENDER_SCREEN = 16;     // blend function ONE_MINUS_DST_COLOR, ONE
constexpr UINT8 RENDER_NO_LIGHTS = 32;  // left out of the additive light passes

// A record's greatest depth, at the far distance of the camera.
constexpr UINT16 RENDER_DEPTH_MAX = 32767;

struct SRenderData {
    UINT8 Flags = 0;
    UINT64 StateId = 0; // two consecutive records of one value share all GL state; 0 is nobody's
    GString PS;
    GString VS;
    UINT32 VertexBuffer = 0;
    UINT32 IndexBuffer = 0;
    UINT8 Stride = 0;
    UINT32 IndexCount = 0;
    UINT32 PositionOffset = 0;
    UINT32 TexCoordOffset = NO_OFFSET; // two floats, texture unit 0
    UINT32 NormalOffset = NO_OFFSET;   // three floats
    UINT32 TangentOffset = NO_OFFSET;  // three floats, texture unit 1
    UINT32 ColorOffset = NO_OFFSET;    // four floats
    UINT32 IndexOffset = NO_OFFSET;    // without it nothing is drawn
    UINT32 Texture0 = 0;
    UINT32 Texture1 = 0;
    UINT16 Depth = 0; // from the eye to the client's box, 0 to RENDER_DEPTH_MAX
    UINT32 SkinBuffer = 0;
    UINT8 SkinStride = 0;
    UINT32 SkinWeightOffset = NO_OFFSET; // four floats, texture unit 2
    UINT32 SkinIndexOffset = NO_OFFSET;  // four bytes, attribute "Indices"

    // Written by the frame pipeline.
    UINT64 SortKey = 0;
    UINT32 PartId = 0;
    IRenderable* Client = nullptr; // whom to ask for the rest
};

// What is sorted: where a record lies, and its key, so that sorting reads nothing else.
struct SDrawEntry {
    UINT64 SortKey = 0;
    const SRenderData* Record = nullptr;
};

// Ascending keys are the order of drawing: opaque records grouped by state and then near ones first, then the
// transparent ones. Shaders are grouped by the length of the pixel shader's name alone.
UINT64 RenderSortKey(const SRenderData& Record);

// A comb sort by the keys of the records: not stable, allocates nothing.
void SortDrawEntries(GArray<SDrawEntry>& Entries);
