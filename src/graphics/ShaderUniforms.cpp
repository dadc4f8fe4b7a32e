// The cached uniforms of the shader library and the state that they are fed from.

#include <GL/glew.h>
#include <algorithm>
#include <cstring>

#include "foundation/GCheck.h"
#include "graphics/ShaderLib.h"

const char* GCurLight = LIGHT_AMBDIR;
Vec3 GFogColor = {0.2f, 0.3f, 0.4f};
Vec2 GFogData = {2000.0f, 0.5f};
Vec4 GLightPos = {0.0f, 0.0f, 200.0f, 500.0f};
Vec3 GLightDir = {-0.5f, -0.5f, 0.5f};
float GLightDirW = 1.0f;
Vec3 GAmbientColor = {0.2f, 0.25f, 0.3f};
Vec3 GLightColor = {0.7f, 0.6f, 0.5f};
Vec2 GLightTransDist = {200.0f, 250.0f};
Mat4 GSMMatrix;
Plane GClipPlane;
UINT32 GShadowTexture = 0;
UINT32 GProjTexture = 0;

namespace {

constexpr INT32 MATRIX_FLOATS = 16;
constexpr INT32 TERRAIN_SHADOW_UNIT = 7;
constexpr INT32 TERRAIN_PROJ_UNIT = 6;

void CheckValue(const float* v) {
    GCHECK_IN("GameShader", v != nullptr, "v");
}

// Stores the new value; false if it is what the slot already holds. Numbers are compared, not bytes.
template <typename T>
bool Changed(SUniformSlot& Slot, const T* v, INT32 Count) {
    T Last[MATRIX_FLOATS];
    std::memcpy(Last, Slot.Value, Count * sizeof(T));
    if (std::equal(v, v + Count, Last)) {
        return false;
    }
    std::memcpy(Slot.Value, v, Count * sizeof(T));
    return true;
}

// The slot to send to, or null if nothing has to be sent.
template <typename T>
const SUniformSlot* SlotToSend(const T* v, INT32 Count, UINT32 Program, const GString& Name) {
    SUniformSlot* Slot = nullptr;
    if (!ShaderGetUniform(Program, Name, Slot) || Slot->Location < 0 || !Changed(*Slot, v, Count)) {
        return nullptr;
    }
    return Slot;
}

void BindOnUnit(INT32 Unit, UINT32 Texture) {
    glActiveTexture(GL_TEXTURE0 + Unit);
    glBindTexture(GL_TEXTURE_2D, Texture);
}

} // namespace

INT32 ShaderGetUniform(UINT32 Program, const GString& Name, SUniformSlot*& Slot) {
    Slot = nullptr;
    const auto Found = GShaderLib->ProgramsById.find(Program);
    if (Found == GShaderLib->ProgramsById.end()) {
        return 0;
    }
    const auto [Entry, New] = Found->second->Uniforms.try_emplace(Name);
    if (New) {
        Entry->second.Location = glGetUniformLocation(Program, Name.CStr());
    }
    Slot = &Entry->second;
    return 1;
}

void ShaderSetUniform1i(INT32 Value, UINT32 Program, const GString& Name) {
    if (const SUniformSlot* Slot = SlotToSend(&Value, 1, Program, Name)) {
        glUniform1i(Slot->Location, Value);
    }
}

void ShaderSetUniform1f(float Value, UINT32 Program, const GString& Name) {
    if (const SUniformSlot* Slot = SlotToSend(&Value, 1, Program, Name)) {
        glUniform1f(Slot->Location, Value);
    }
}

void ShaderSetUniform2fv(const float* v, UINT32 Program, const GString& Name) {
    CheckValue(v);
    if (const SUniformSlot* Slot = SlotToSend(v, 2, Program, Name)) {
        glUniform2fv(Slot->Location, 1, v);
    }
}

void ShaderSetUniform3fv(const float* v, UINT32 Program, const GString& Name) {
    CheckValue(v);
    if (const SUniformSlot* Slot = SlotToSend(v, 3, Program, Name)) {
        glUniform3fv(Slot->Location, 1, v);
    }
}

void ShaderSetUniform4fv(const float* v, UINT32 Program, const GString& Name) {
    CheckValue(v);
    if (const SUniformSlot* Slot = SlotToSend(v, 4, Program, Name)) {
        glUniform4fv(Slot->Location, 1, v);
    }
}

void ShaderSetUniformMatrices(const float* v, UINT32 Program, const GString& Name, INT32 Count) {
    CheckValue(v);
    SUniformSlot* Slot = nullptr;
    if (!ShaderGetUniform(Program, Name, Slot) || Slot->Location < 0) {
        return;
    }
    // The slot remembers the first matrix of an array only, which says nothing about the others.
    if (Changed(*Slot, v, MATRIX_FLOATS) || Count >= 2) {
        glUniformMatrix4fv(Slot->Location, Count, GL_FALSE, v);
    }
}

void ShaderSendWorldMatrix(UINT32 Program) {
    ShaderSetUniformMatrices(GWorldMatrix.M, Program, "WorldMatrix", 1);
}

void ShaderSendViewMatrix(UINT32 Program) {
    ShaderSetUniformMatrices(GViewMatrix.M, Program, "ViewMatrix", 1);
}

void ShaderSendProjectionMatrix(UINT32 Program) {
    ShaderSetUniformMatrices(GProjectionMatrix.M, Program, "ProjectionMatrix", 1);
}

void ShaderSendFog(UINT32 Program) {
    ShaderSetUniform3fv(&GFogColor.x, Program, "FogColor");
    ShaderSetUniform2fv(&GFogData.x, Program, "FogData");
}

void ShaderSendLight(UINT32 Program) {
    ShaderSetUniform4fv(&GLightPos.x, Program, "LightPos");
    Vec3 Dir = GLightDir;
    M_Normalize(Dir);
    const Vec4 DirAndW = {Dir.x, Dir.y, Dir.z, GLightDirW};
    ShaderSetUniform4fv(&DirAndW.x, Program, "LightDir");
    if (GCurLight == LIGHT_AMBDIR) {
        ShaderSetUniform3fv(&GAmbientColor.x, Program, "AmbientColor");
    }
    ShaderSetUniform3fv(&GLightColor.x, Program, "LightColor");
    ShaderSetUniform2fv(&GLightTransDist.x, Program, "LightTransDist");
}

void ShaderSendShadow(UINT32 Program) {
    ShaderSetUniformMatrices(GSMMatrix.M, Program, "SMMatrix", 1);
    ShaderSetUniform1i(TERRAIN_SHADOW_UNIT, Program, "ShadowMap");
    BindOnUnit(TERRAIN_SHADOW_UNIT, GShadowTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    ShaderSetUniform1i(TERRAIN_PROJ_UNIT, Program, "ProjMap");
    BindOnUnit(TERRAIN_PROJ_UNIT, GProjTexture);
}
