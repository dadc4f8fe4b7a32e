// The one routine that draws meshes: a frame list, with as few changes of state as its order allows.
#include "foundation/Diagnostics.h"
#include "graphics/Mesh.h"
#include "graphics/ShaderLib.h"
#include "scene/Renderable.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <algorithm>

namespace {

const char* const SKINNING = "SKINNING";

// Units of the samplers that every lit mesh shader may have; those below belong to the part's own textures.
constexpr INT32 SHADOW_MAP_UNIT = 6;
constexpr INT32 PROJECTED_MAP_UNIT = 7;

constexpr UINT32 TEXTURE_UNITS = 8;

// What no texture, buffer or set of flags is called.
constexpr UINT32 UNKNOWN = ~UINT32{0};

// The flags that say how a record is blended.
constexpr UINT8 BLEND_FLAGS = RENDER_TRANSPARENT | RENDER_ADDITIVE | RENDER_SCREEN;

// Bone indices of a vertex.
constexpr INT32 BONES_PER_VERTEX = 4;

const void* BufferOffset(UINT32 Offset) {
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(Offset));
}

// An array that the record lacks is switched off: one left on would be read past its end.
void SetTexCoordArray(INT32 Unit, INT32 Floats, UINT32 Stride, UINT32 Offset) {
    glClientActiveTexture(GL_TEXTURE0 + static_cast<UINT32>(Unit));
    if (Offset == NO_OFFSET) {
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        return;
    }
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(Floats, GL_FLOAT, static_cast<INT32>(Stride), BufferOffset(Offset));
}

void SetArray(UINT32 Array, UINT32 Offset) {
    if (Offset == NO_OFFSET) {
        glDisableClientState(Array);
    } else {
        glEnableClientState(Array);
    }
}

// One walk over a list. What is bound is remembered from record to record.
class CListDrawing {
public:
    // Blending is on throughout in a light pass, else per record. A Program that is current already, or 0.
    CListDrawing(bool Light, bool Shadow, UINT32 Program) : Light(Light), Shadow(Shadow), Program(Program) {
        std::fill(std::begin(Textures), std::end(Textures), UNKNOWN);
    }

    void Draw(const SDrawEntry& Entry);
    void Finish() const;

private:
    void SetBlending(UINT8 Flags);
    void SetState(const SDrawEntry& Entry);
    void UseProgram(const SRenderData& Rd);
    void SetVertices(const SRenderData& Rd) const;
    void SetSkin(const SRenderData& Rd);
    void SetMaps();
    void BindTexture(INT32 Unit, UINT32 Texture);
    void DrawIndices(const SRenderData& Rd);

    bool Light;
    bool Shadow;
    UINT32 Program;
    UINT64 StateId = 0;
    UINT32 Blending = UNKNOWN;  // BLEND_FLAGS of the last record
    INT32 IndicesLocation = -1; // of the attribute in Program, -1 if there is none
    bool Skinned = false;       // the present state takes its bones from the attribute
    UINT32 IndexBuffer = UNKNOWN;
    UINT32 Textures[TEXTURE_UNITS]; // bound by this walk
    Mat4 Matrices[MESH_MAX_BONES];
};

void CListDrawing::SetBlending(UINT8 Flags) {
    const UINT8 Wanted = Flags & BLEND_FLAGS;
    if (Wanted == Blending) {
        return;
    }
    Blending = Wanted;
    if (!Light && (Wanted & RENDER_TRANSPARENT)) {
        glEnable(GL_BLEND);
    } else if (!Light) {
        glDisable(GL_BLEND);
    }
    if (Wanted & RENDER_ADDITIVE) {
        glBlendFunc(GL_ONE, GL_ONE);
    } else if (Wanted & RENDER_SCREEN) {
        glBlendFunc(GL_ONE_MINUS_DST_COLOR, GL_ONE);
    } else {
        glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    }
}

void CListDrawing::UseProgram(const SRenderData& Rd) {
    if (Rd.VS.Empty() || Rd.PS.Empty()) {
        FatalError("-ASSERT-\nThis test expression is false:\n%s\n", "rd.VS.CStr() && rd.PS.CStr()");
    }
    GArray<const char*> Macros;
    Macros.Reserve(2);
    if (!Shadow) {
        Macros.Add(GCurLight);
    }
    if (Rd.SkinWeightOffset != NO_OFFSET && Rd.SkinIndexOffset != NO_OFFSET) {
        Macros.Add(SKINNING);
    }
    const UINT32 Wanted =
        Shadow ? ShaderGetProgram("RenderShadow", "RenderShadow", Macros) : ShaderGetProgram(Rd.PS, Rd.VS, Macros);
    if (Wanted != Program) {
        glUseProgram(Wanted);
        Program = Wanted;
        IndicesLocation = glGetAttribLocation(Program, "Indices");
    }
}

void CListDrawing::SetVertices(const SRenderData& Rd) const {
    glBindBuffer(GL_ARRAY_BUFFER, Rd.VertexBuffer);
    glVertexPointer(3, GL_FLOAT, Rd.Stride, BufferOffset(Rd.PositionOffset));
    SetArray(GL_NORMAL_ARRAY, Rd.NormalOffset);
    if (Rd.NormalOffset != NO_OFFSET) {
        glNormalPointer(GL_FLOAT, Rd.Stride, BufferOffset(Rd.NormalOffset));
    }
    SetArray(GL_COLOR_ARRAY, Rd.ColorOffset);
    if (Rd.ColorOffset != NO_OFFSET) {
        glColorPointer(4, GL_FLOAT, Rd.Stride, BufferOffset(Rd.ColorOffset));
    }
    SetTexCoordArray(0, 2, Rd.Stride, Rd.TexCoordOffset);
    SetTexCoordArray(1, 3, Rd.Stride, Rd.TangentOffset);
}

void CListDrawing::SetSkin(const SRenderData& Rd) {
    Skinned = Rd.SkinWeightOffset != NO_OFFSET && Rd.SkinIndexOffset != NO_OFFSET;
    if (!Skinned) {
        SetTexCoordArray(2, 0, 0, NO_OFFSET);
        return;
    }
    glBindBuffer(GL_ARRAY_BUFFER, Rd.SkinBuffer);
    SetTexCoordArray(2, 4, Rd.SkinStride, Rd.SkinWeightOffset);
    Skinned = IndicesLocation >= 0;
    if (Skinned) {
        glVertexAttribPointer(static_cast<UINT32>(IndicesLocation), BONES_PER_VERTEX, GL_UNSIGNED_BYTE, GL_FALSE,
                              Rd.SkinStride, BufferOffset(Rd.SkinIndexOffset));
    }
}

void CListDrawing::SetMaps() {
    ShaderSetUniformMatrices(GSMMatrix.M, Program, "SMMatrix", 1);
    ShaderSetUniform1i(SHADOW_MAP_UNIT, Program, "ShadowMap");
    BindTexture(SHADOW_MAP_UNIT, GShadowTexture);
    ShaderSetUniform1i(PROJECTED_MAP_UNIT, Program, "ProjMap");
    BindTexture(PROJECTED_MAP_UNIT, GProjTexture);
}

void CListDrawing::BindTexture(INT32 Unit, UINT32 Texture) {
    if (Textures[Unit] != Texture) {
        glActiveTexture(GL_TEXTURE0 + static_cast<UINT32>(Unit));
        glBindTexture(GL_TEXTURE_2D, Texture);
        Textures[Unit] = Texture;
    }
}

void CListDrawing::SetState(const SDrawEntry& Entry) {
    const SRenderData& Rd = *Entry.Record;
    UseProgram(Rd);
    SetVertices(Rd);
    SetSkin(Rd);
    BindTexture(0, Rd.Texture0);
    BindTexture(1, Rd.Texture1);
    Rd.Client->SetupPart(Rd.PartId, Program);
    SetMaps();
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    StateId = Rd.StateId;
}

// The attribute is on for the one call only: whatever draws next may not know of it.
void CListDrawing::DrawIndices(const SRenderData& Rd) {
    if (Rd.IndexOffset == NO_OFFSET) {
        return;
    }
    if (Skinned) {
        glEnableVertexAttribArray(static_cast<UINT32>(IndicesLocation));
    }
    if (IndexBuffer != Rd.IndexBuffer) {
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, Rd.IndexBuffer);
        IndexBuffer = Rd.IndexBuffer;
    }
    glDrawElements(GL_TRIANGLES, static_cast<INT32>(Rd.IndexCount), GL_UNSIGNED_INT, BufferOffset(Rd.IndexOffset));
    if (Skinned) {
        glDisableVertexAttribArray(static_cast<UINT32>(IndicesLocation));
    }
}

void CListDrawing::Draw(const SDrawEntry& Entry) {
    const SRenderData& Rd = *Entry.Record;
    SetBlending(Rd.Flags);
    if (Rd.StateId != StateId) {
        SetState(Entry);
    }
    const UINT32 Count = Rd.Client->GetWorldMatrices(Matrices);
    ShaderSetUniformMatrices(Matrices[0].M, Program, "WorldMatrix", static_cast<INT32>(Count));
    DrawIndices(Rd);
}

void CListDrawing::Finish() const {
    if (!Light && (Blending & RENDER_TRANSPARENT)) {
        glDisable(GL_BLEND);
    }
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    for (UINT32 Unit = 0; Unit < TEXTURE_UNITS; ++Unit) {
        glClientActiveTexture(GL_TEXTURE0 + Unit);
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
}

// A light's list holds what the light reaches; what the camera doesn't see need not be drawn.
bool IsLeftOutOfLight(const SDrawEntry& Entry, const Frustum& View) {
    if (Entry.Record->Flags & RENDER_NO_LIGHTS) {
        return true;
    }
    BBox Bounds;
    Entry.Record->Client->GetBounds(&Bounds);
    return M_BBoxOutsideFrustum(Bounds, View);
}

} // namespace

void CLevel::DrawList(bool Light, bool Shadow, bool LightList) {
    if (Light && GCurLight == LIGHT_AMBDIR) {
        FatalError("-ASSERT-\nThis test expression is false:\n%s\n", "!Light || ( GCurLight != LIGHT_AMBDIR )");
    }
    if (!Light) {
        glDisable(GL_BLEND);
    }
    Frustum View;
    M_CameraFrustum(View);
    CListDrawing Drawing(Light, Shadow, Shadow ? ShadowProgram : 0);
    for (const SDrawEntry& Entry : Light || LightList ? LightEntries : SceneEntries) {
        if (Light && IsLeftOutOfLight(Entry, View)) {
            continue;
        }
        Drawing.Draw(Entry);
    }
    Drawing.Finish();
}
