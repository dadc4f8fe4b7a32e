#include <GL/glew.h>
#include <cmath>

#include "foundation/Diagnostics.h"
#include "graphics/TextureStorage.h"
#include "scene/DrawHelpers.h"
#include "terrain/Terrain.h"

namespace {

// A component from -1 to 1 as a byte.
INT32 PackComponent(float Value) {
    return static_cast<INT32>((0.5f * Value + 0.5f) * 255.0f);
}

// The colours of a row of normals, from the heights of two rows of samples. What M_PackColor makes of 0.5 n + 0.5 and
// full alpha, in plain arithmetic without branches and calls: this is the longest part of a large terrain's load, and
// in this form several cells are computed at once.
void FillNormalRow(const float* __restrict Row, const float* __restrict Next, UINT32 Cells, float TwoCellsX,
                   float TwoCellsY, UINT32* __restrict Out) {
    constexpr UINT32 OPAQUE = 0xFF000000u;
    const float Up = TwoCellsX * TwoCellsY;
    for (UINT32 x = 0; x < Cells; x++) {
        const float RiseX = (Row[x + 1] - Row[x]) + (Next[x + 1] - Next[x]);
        const float RiseY = (Next[x] - Row[x]) + (Next[x + 1] - Row[x + 1]);
        // The cross product of (TwoCellsX, 0, RiseX) and (0, TwoCellsY, RiseY).
        const float nx = -RiseX * TwoCellsY;
        const float ny = -TwoCellsX * RiseY;
        const float Length = std::sqrt(nx * nx + ny * ny + Up * Up);
        const INT32 Red = PackComponent(nx / Length);
        const INT32 Green = PackComponent(ny / Length);
        const INT32 Blue = PackComponent(Up / Length);
        Out[x] = static_cast<UINT32>(Red | Green << 8 | Blue << 16) | OPAQUE;
    }
}

} // namespace

Vec3 STerrain::GetPoint(UINT32 x, UINT32 y) const {
    G_ASSERT(x < Width && y < Height);
    const float u = static_cast<float>(x) / static_cast<float>(Width);
    const float v = static_cast<float>(y) / static_cast<float>(Height);
    return {(2 * u - 1) * Extents.x + Position.x, (2 * v - 1) * Extents.y + Position.y,
            Heights[y * Width + x] * Extents.z + Position.z};
}

void STerrain::FillVertices(SVertex20* Out) const {
    const float* Sample = Heights;
    for (UINT32 y = 0; y < Height; y++) {
        const float PosY = 2 * static_cast<float>(y) / static_cast<float>(Height) - 1;
        const float v = static_cast<float>(y) / static_cast<float>(Height - 1);
        for (UINT32 x = 0; x < Width; x++, Out++) {
            const float fx = static_cast<float>(x);
            Out->Pos = {2 * fx / static_cast<float>(Width) - 1, PosY, *Sample++};
            Out->Tex = {fx / static_cast<float>(Width - 1), v};
        }
    }
}

void STerrain::FillNormals(UINT32* Out) const {
    const float TwoCellsX = 2 * (2 / static_cast<float>(Width));
    const float TwoCellsY = 2 * (2 / static_cast<float>(Height));
    const UINT32 Cells = Width - 1;
    for (UINT32 y = 0; y + 1 < Height; y++) {
        const float* Row = Heights + static_cast<std::size_t>(y) * Width;
        FillNormalRow(Row, Row + Width, Cells, TwoCellsX, TwoCellsY, Out + static_cast<std::size_t>(y) * Cells);
    }
}

// Straight into the buffer's own memory: an array beside it would cost as much as the vertices themselves.
void STerrain::UploadVertices() {
    const std::size_t Bytes = std::size_t{Width} * Height * sizeof(SVertex20);
    glBindBuffer(GL_ARRAY_BUFFER, VertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(Bytes), nullptr, GL_STATIC_DRAW);
    void* Memory = glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY);
    if (!Memory) {
        FatalError("The graphics driver has no memory for a terrain of %u x %u samples\n", Width, Height);
    }
    FillVertices(static_cast<SVertex20*>(Memory));
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void STerrain::RebuildGeometry() {
    if (MinPartSize == 0) {
        return;
    }
    UploadVertices();
    UINT32* Normals = new UINT32[(Width - 1) * (Height - 1)];
    FillNormals(Normals);
    glDeleteTextures(1, &NormalMap);
    NormalMap = TextureFromPixels(static_cast<INT32>(Width - 1), static_cast<INT32>(Height - 1), Normals);
    delete[] Normals;
}
