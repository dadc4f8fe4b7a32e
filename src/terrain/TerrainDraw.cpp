#include <GL/glew.h>

#include "graphics/ShaderLib.h"
#include "scene/DrawHelpers.h"
#include "terrain/Terrain.h"

#include <algorithm>

namespace {

constexpr GLuint MAP_UNITS = 5; // NormalMap and the four detail textures, from unit 0 on
constexpr GLuint LIGHT_MAP_UNIT = 5;
constexpr GLuint UNITS_LEFT_OFF = 4; // after the camera pass

struct SSampler {
    const char* Name;
    INT32 Unit;
};

constexpr SSampler SAMPLERS[] = {{"LightMap", LIGHT_MAP_UNIT},
                                 {"NormalMap", 0},
                                 {"DetailMap", 1},
                                 {"DetailMapN", 2},
                                 {"DetailMap2", 3},
                                 {"DetailMap2N", 4}};

void BindMaps(const STerrain& Terrain) {
    const UINT32 Maps[MAP_UNITS] = {Terrain.NormalMap, Terrain.DetailMap, Terrain.DetailMapN, Terrain.DetailMap2,
                                    Terrain.DetailMap2N};
    for (GLuint Unit = 0; Unit < MAP_UNITS; Unit++) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, Maps[Unit]);
    }
    glActiveTexture(GL_TEXTURE0 + LIGHT_MAP_UNIT);
    glBindTexture(GL_TEXTURE_2D, Terrain.LightMap);
}

void BindProgram(const STerrain& Terrain) {
    GArray<const char*> Macros;
    Macros.Resize(1);
    Macros[0] = GCurLight;
    const UINT32 Program = ShaderGetProgram("Terrain", "Terrain", Macros);
    glUseProgram(Program);
    const Plane& Clip = GClipPlane;
    const float ClipPlane[4] = {Clip.Normal.x, Clip.Normal.y, Clip.Normal.z, Clip.D};
    ShaderSetUniform4fv(ClipPlane, Program, "ClipPlane");
    ShaderSendFog(Program);
    ShaderSendLight(Program);
    ShaderSendShadow(Program);
    ShaderSetUniform3fv(&GCamera.Eye.x, Program, "CameraPos");
    ShaderSendWorldMatrix(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    BindMaps(Terrain);
    for (const SSampler& Sampler : SAMPLERS) {
        ShaderSetUniform1i(Sampler.Unit, Program, Sampler.Name);
    }
    ShaderSetUniform3fv(&Terrain.Extents.x, Program, "Extents");
    ShaderSetUniform1f(Terrain.DetailSize, Program, "DetailSize");
}

const void* BufferPlace(std::size_t Bytes) {
    return reinterpret_cast<const void*>(Bytes);
}

// The neighbours' levels decide which of the leaf's edges leave out every other vertex.
UINT32 CoarserSides(const STerrain& Terrain, UINT32 Leaf) {
    const UINT32 Columns = Terrain.LeafColumns();
    const UINT32 c = Leaf % Columns;
    const UINT32 r = Leaf / Columns;
    const STerrainLeaf* Own = Terrain.Leaves + Leaf;
    const UINT32 Lod = Own->Lod();
    UINT32 Mask = 0;
    if (c > 0 && Own[-1].Lod() > Lod) {
        Mask |= TERRAIN_LOW_X;
    }
    if (r > 0 && (Own - Columns)->Lod() > Lod) {
        Mask |= TERRAIN_LOW_Y;
    }
    if (c + 1 < Columns && Own[1].Lod() > Lod) {
        Mask |= TERRAIN_HIGH_X;
    }
    if (r + 1 < Terrain.LeafRows() && Own[Columns].Lod() > Lod) {
        Mask |= TERRAIN_HIGH_Y;
    }
    return Mask;
}

// Moving the arrays to the leaf's corner lets all leaves share their index lists.
void DrawLeaf(const STerrain& Terrain, UINT32 Leaf) {
    const UINT32 List = Terrain.Leaves[Leaf].Lod() * TERRAIN_MASKS + CoarserSides(Terrain, Leaf);
    if (Terrain.IndexCount[List] == 0) {
        return;
    }
    const UINT32 c = Leaf % Terrain.LeafColumns();
    const UINT32 r = Leaf / Terrain.LeafColumns();
    const std::size_t First = std::size_t{r * Terrain.Width + c} * Terrain.MinPartSize * sizeof(SVertex20);
    glVertexPointer(3, GL_FLOAT, sizeof(SVertex20), BufferPlace(First + offsetof(SVertex20, Pos)));
    glTexCoordPointer(2, GL_FLOAT, sizeof(SVertex20), BufferPlace(First + offsetof(SVertex20, Tex)));
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(Terrain.IndexCount[List]), GL_UNSIGNED_INT,
                   BufferPlace(std::size_t{Terrain.IndexOffset[List]} * sizeof(UINT32)));
}

// Of the Count leaves along an axis, the one nearest to a place.
UINT32 LeafNumber(float Place, float HalfSize, UINT32 Count) {
    const float Part = std::clamp(Place / (2 * HalfSize) + 0.5f, 0.0f, 1.0f);
    return std::min(static_cast<UINT32>(Part * static_cast<float>(Count)), Count - 1);
}

// Step i of a walk over all leaves along an axis: from First down to 0, then from the one above First up.
UINT32 Outwards(UINT32 First, UINT32 i) {
    return i <= First ? First - i : i;
}

} // namespace

void STerrain::Bind(bool NoProgram, bool BindDetail) {
    if (MinPartSize == 0) {
        return;
    }
    M_Mat4Compose(Extents, Position, GWorldMatrix, Quat());
    if (BindDetail) {
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, DetailMapN);
    }
    if (!NoProgram) {
        BindProgram(*this);
    }
    glBindBuffer(GL_ARRAY_BUFFER, VertexBuffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, IndexBuffer);
    glClientActiveTexture(GL_TEXTURE0);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
}

// Near leaves come first, so that what they hide is not shaded.
void STerrain::DrawLeaves() const {
    const UINT32 Column = LeafNumber(GCamera.Eye.x - Position.x, Extents.x, LeafColumns());
    const UINT32 Row = LeafNumber(GCamera.Eye.y - Position.y, Extents.y, LeafRows());
    for (UINT32 i = 0; i < LeafRows(); i++) {
        for (UINT32 j = 0; j < LeafColumns(); j++) {
            const UINT32 Leaf = Outwards(Row, i) * LeafColumns() + Outwards(Column, j);
            if (Leaves[Leaf].IsVisible()) {
                DrawLeaf(*this, Leaf);
            }
        }
    }
}

void STerrain::Unbind() const {
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void STerrain::Draw() {
    if (!Visible(false)) {
        return;
    }
    Bind(false, false);
    DrawLeaves();
    Unbind();
    for (GLuint Unit = 0; Unit < UNITS_LEFT_OFF; Unit++) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        glDisable(GL_TEXTURE_2D);
    }
}
