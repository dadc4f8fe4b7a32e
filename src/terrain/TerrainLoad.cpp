#include <GL/glew.h>

#include "foundation/Diagnostics.h"
#include "foundation/Scan.h"
#include "graphics/TextureStorage.h"
#include "physics/Physics.h"
#include "terrain/Terrain.h"
#include "terrain/TerrainFile.h"
#include "terrain/TerrainShape.h"

namespace {

// So many leaves along each side, as a power of two.
constexpr UINT32 LEAVES_PER_SIDE_LOG2 = 4;

constexpr UINT32 RGBA_BYTES = 4;
constexpr UINT32 CHANNEL_VALUES = 256;

struct SPixels {
    INT32 Width = 0;
    INT32 Height = 0;
    UINT8* Rgba = nullptr;

    ~SPixels() { delete[] Rgba; }
};

bool ReadPicture(const char* Path, SPixels& Out) {
    UINT32 Image = TextureOpenImage(Path);
    if (!Image) {
        return false;
    }
    TextureCopyBoundImage(Out.Width, Out.Height, Out.Rgba, Image);
    return Out.Rgba != nullptr;
}

// The largest side of 2^k + 1 samples that fits into the picture; 0 if none does.
UINT32 UsableSide(UINT32 Width, UINT32 Height) {
    const UINT32 Limit = Width < Height ? Width : Height;
    UINT32 Side = 0;
    for (UINT32 Next = TERRAIN_MIN_SIDE; Next <= Limit && Next <= TERRAIN_MAX_SIDE; Next = 2 * Next - 1) {
        Side = Next;
    }
    return Side;
}

// The red channel of the first Side columns and rows as fractions.
void CopyHeights(const SPixels& Pixels, UINT32 Side, float* Out) {
    float Fractions[CHANNEL_VALUES];
    for (UINT32 i = 0; i < CHANNEL_VALUES; i++) {
        Fractions[i] = static_cast<float>(i) / (CHANNEL_VALUES - 1);
    }
    const std::size_t RowBytes = static_cast<std::size_t>(Pixels.Width) * RGBA_BYTES;
    for (UINT32 y = 0; y < Side; y++) {
        const UINT8* Row = Pixels.Rgba + y * RowBytes;
        for (UINT32 x = 0; x < Side; x++) {
            *Out++ = Fractions[Row[x * RGBA_BYTES]];
        }
    }
}

} // namespace

bool STerrain::HasUsableExtents() const {
    // Written so that what is not a number fails.
    return Extents.x > 0 && Extents.x <= TERRAIN_MAX_EXTENT && Extents.y > 0 && Extents.y <= TERRAIN_MAX_EXTENT &&
           Extents.z >= 0 && Extents.z <= TERRAIN_MAX_EXTENT;
}

bool STerrain::LoadHeights(const GString& Picture) {
    SPixels Pixels;
    if (!ReadPicture(Picture.CStr(), Pixels)) {
        return false;
    }
    const UINT32 PictureWidth = static_cast<UINT32>(Pixels.Width);
    const UINT32 PictureHeight = static_cast<UINT32>(Pixels.Height);
    const UINT32 Side = UsableSide(PictureWidth, PictureHeight);
    if (Side == 0) {
        LogPrintf("Terrain picture \"%s\" is %u x %u, the least is %u x %u\n", Picture.CStr(), PictureWidth,
                  PictureHeight, TERRAIN_MIN_SIDE, TERRAIN_MIN_SIDE);
        return false;
    }
    if (PictureWidth != Side || PictureHeight != Side) {
        LogPrintf("Terrain picture \"%s\" is %u x %u, only %u x %u of it can be used\n", Picture.CStr(), PictureWidth,
                  PictureHeight, Side, Side);
    }
    Width = Height = Side;
    Heights = new float[Width * Height];
    CopyHeights(Pixels, Side, Heights);
    return true;
}

void STerrain::LoadDetails(const STerrainFile& File) {
    DetailMap = TextureLoad(File.Details[0]);
    DetailMapN = TextureLoad(File.Details[1]);
    DetailMap2 = TextureLoad(File.Details[2]);
    DetailMap2N = TextureLoad(File.Details[3]);
    HoldsDetails = true;
}

void STerrain::MakeBuffers() {
    glGenBuffers(1, &VertexBuffer);
    glGenBuffers(1, &IndexBuffer);
    GArray<UINT32> Indices;
    BuildIndices(Indices);
    RebuildGeometry();
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, IndexBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(Indices.count * sizeof(UINT32)), Indices.Data,
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void STerrain::Load(const char* Path) {
    Free();
    GString Text;
    if (!Path || !F_ReadTextFile(Path, Text)) {
        return;
    }
    STerrainFile File;
    if (!ParseTerrainFile(Path, Text, File)) {
        return;
    }
    if (!HasUsableExtents()) {
        LogPrintf("Terrain \"%s\" cannot have the size %f x %f x %f\n", Path, Extents.x, Extents.y, Extents.z);
        return;
    }
    if (!LoadHeights(File.Picture)) {
        return;
    }
    LoadDetails(File);
    MinPartSize = (Width - 1) >> LEAVES_PER_SIDE_LOG2;
    RebuildTree();
    FileName = Path;
    Body = CreateTerrainBody(Extents, Heights, Width, Height, Position);
    MakeBuffers();
}

void STerrain::Free() {
    if (Body) {
        PhyRemoveBody(Body);
        Body = nullptr;
    }
    if (NormalMap) {
        glDeleteTextures(1, &NormalMap);
        NormalMap = 0;
    }
    if (HoldsDetails) {
        for (UINT32* Map : {&DetailMap, &DetailMapN, &DetailMap2, &DetailMap2N}) {
            TextureRelease(*Map);
            *Map = 0;
        }
        HoldsDetails = false;
    }
    for (UINT32* Buffer : {&VertexBuffer, &IndexBuffer}) {
        if (*Buffer) {
            glDeleteBuffers(1, Buffer);
            *Buffer = 0;
        }
    }
    delete[] Heights;
    Heights = nullptr;
    FreeTree();
    FileName.Clear();
    Width = Height = MinPartSize = LightMap = 0;
    for (UINT32 i = 0; i < TERRAIN_LODS * TERRAIN_MASKS; i++) {
        IndexOffset[i] = IndexCount[i] = 0;
    }
}
