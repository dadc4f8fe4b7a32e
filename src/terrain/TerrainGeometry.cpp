#include <GL/glew.h>

#include "foundation/Diagnostics.h"
#include "graphics/TextureStorage.h"
#include "scene/DrawHelpers.h"
#include "terrain/Terrain.h"

Vec3 STerrain::GetPoint(UINT32 x, UINT32 y) const {
    G_ASSERT(x < Width && y < Height);
    const float u = static_cast<float>(x) / static_cast<float>(Width);
    const float v = static_cast<float>(y) / static_cast<float>(Height);
    return {(2 * u - 1) * Extents.x + Position.x, (2 * v - 1) * Extents.y + Position.y,
            Heights[y * Width + x] * Extents.z + Position.z};
}

void STerrain::FillVertices(SVertex20* Out) const {
    for (UINT32 y = 0; y < Height; y++) {
        const float PosY = 2 * static_cast<float>(y) / static_cast<float>(Height) - 1;
        const float v = static_cast<float>(y) / static_cast<float>(Height - 1);
        for (UINT32 x = 0; x < Width; x++) {
            const float fx = static_cast<float>(x);
            Out->Pos = {2 * fx / static_cast<float>(Width) - 1, PosY, Heights[y * Width + x]};
            Out->Tex = {fx / static_cast<float>(Width - 1), v};
            Out++;
        }
    }
}

// In unit space, with heights from 0 to 1 over a square of 2 by 2: the shader has Extents to correct the normal with.
void STerrain::FillNormals(UINT32* Out) const {
    const float TwoCellsX = 2 * (2 / static_cast<float>(Width));
    const float TwoCellsY = 2 * (2 / static_cast<float>(Height));
    for (UINT32 y = 0; y + 1 < Height; y++) {
        const float* Row = Heights + static_cast<std::size_t>(y) * Width;
        const float* Next = Row + Width;
        for (UINT32 x = 0; x + 1 < Width; x++) {
            const float RiseX = (Row[x + 1] - Row[x]) + (Next[x + 1] - Next[x]);
            const float RiseY = (Next[x] - Row[x]) + (Next[x + 1] - Row[x + 1]);
            Vec3 Normal = M_Cross({TwoCellsX, 0, RiseX}, {0, TwoCellsY, RiseY});
            M_Normalize(Normal);
            *Out++ = M_PackColor({0.5f * Normal.x + 0.5f, 0.5f * Normal.y + 0.5f, 0.5f * Normal.z + 0.5f, 1.0f});
        }
    }
}

void STerrain::RebuildGeometry() {
    if (MinPartSize == 0) {
        return;
    }
    const UINT32 VertexCount = Width * Height;
    SVertex20* Vertices = new SVertex20[VertexCount];
    FillVertices(Vertices);
    glBindBuffer(GL_ARRAY_BUFFER, VertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(VertexCount * sizeof(SVertex20)), Vertices, GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    delete[] Vertices;

    UINT32* Normals = new UINT32[(Width - 1) * (Height - 1)];
    FillNormals(Normals);
    glDeleteTextures(1, &NormalMap);
    NormalMap = TextureFromPixels(static_cast<INT32>(Width - 1), static_cast<INT32>(Height - 1), Normals);
    delete[] Normals;
}
