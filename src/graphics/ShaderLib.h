// The shader library: OpenGL programs made on demand from the text files in Data/Shaders and kept to the end, with
// cached access to their uniforms; and the light and fog state that goes into those uniforms.
//
// ShaderGetProgram turns a pixel shader's name, a vertex shader's name and a list of macros into a program, once for
// each distinct request; the order of the macros is part of the request. Names are file names without folder and
// extension. A repeated request compares strings with all programs; the first one compiles and may take long.
//
// The setters remember per program and name what they last sent and call OpenGL only on a change, so a caller may set
// everything in every frame. They expect the program to be the one in use, and nobody else may set the same uniforms.
// The remembered value starts at zero, like the uniform itself. Arrays of more than one matrix are always sent.
//
// The library owns all shader and program objects; ShaderLibInit makes it once a context is there, ShaderLibFree
// deletes everything. Macro and shader names belong to the caller and are only read.
//
// Bad input: a shader that does not compile and a program that does not link are fatal, with the log on standard
// output; a shader file that is missing is left out of its program. A uniform that the program lacks and a program that
// the library does not know are ignored by the setters. A null value pointer fails an assertion, and so does a macro
// longer than SHADER_MACRO_MAX.
#pragma once

#include <unordered_map>

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"
#include "foundation/Types.h"

// The longest macro in characters: with "#define " and the line end it makes 63.
constexpr UINT32 SHADER_MACRO_MAX = 54;

struct SShaderObject {
    UINT32 Shader = 0;  // 0 until it is compiled, and if its file is missing
    INT32 RefCount = 0; // programs that use it
};

struct SUniformSlot {
    INT32 Location = -1;                                   // -1: the program has no such uniform
    alignas(float) unsigned char Value[sizeof(Mat4)] = {}; // what was last sent, from the first byte on
};

struct SShaderProgram {
    UINT32 Program = 0;
    UINT32 VertexShader = 0;
    UINT32 PixelShader = 0;
    GString VSKey; // the name with all macros behind it
    GString PSKey;
    std::unordered_map<GString, SUniformSlot> Uniforms; // filled on first use
};

struct SShaderLib {
    GMap<GString, SShaderObject> VertexShaders; // by key
    GMap<GString, SShaderObject> PixelShaders;
    GArray<SShaderProgram*> Programs; // in order of creation
    std::unordered_map<UINT32, SShaderProgram*> ProgramsById;
};

extern SShaderLib* GShaderLib;

// The two light macros; code compares the pointers.
inline constexpr char LIGHT_AMBDIR[] = "L_AMBDIR"; // ambient and one directional light
inline constexpr char LIGHT_SPOT[] = "L_SPOT";     // one spot light, in an additive pass

extern const char* GCurLight; // always one of the two
extern Vec3 GFogColor;
extern Vec2 GFogData;  // distance in world units, exponent
extern Vec4 GLightPos; // w: reach in world units
extern Vec3 GLightDir; // normalised when it is sent
extern float GLightDirW;
extern Vec3 GAmbientColor;
extern Vec3 GLightColor;
extern Vec2 GLightTransDist; // world units
extern Mat4 GSMMatrix;       // world to clip space of the shadow map, without scale and bias
extern Plane GClipPlane;
extern UINT32 GShadowTexture;
extern UINT32 GProjTexture;

void ShaderLibInit();
void ShaderLibFree();

UINT32 ShaderGetProgram(const GString& PixelShader, const GString& VertexShader,
                        const GArray<const char*>& Macros = GArray<const char*>());

// 1 and the slot if the library knows the program, else 0 and a null slot. The slot lives as long as the program.
INT32 ShaderGetUniform(UINT32 Program, const GString& Name, SUniformSlot*& Slot);

// Samplers are set with 1i.
void ShaderSetUniform1i(INT32 Value, UINT32 Program, const GString& Name);
void ShaderSetUniform1f(float Value, UINT32 Program, const GString& Name);
void ShaderSetUniform2fv(const float* v, UINT32 Program, const GString& Name);
void ShaderSetUniform3fv(const float* v, UINT32 Program, const GString& Name);
void ShaderSetUniform4fv(const float* v, UINT32 Program, const GString& Name);

// Count matrices of 16 floats, column-major.
void ShaderSetUniformMatrices(const float* v, UINT32 Program, const GString& Name, INT32 Count);

void ShaderSendWorldMatrix(UINT32 Program);
void ShaderSendViewMatrix(UINT32 Program);
void ShaderSendProjectionMatrix(UINT32 Program);
void ShaderSendFog(UINT32 Program);

// AmbientColor goes out only under LIGHT_AMBDIR.
void ShaderSendLight(UINT32 Program);

// The terrain's binding: shadow map on unit 7, projected texture on unit 6, which stays active.
void ShaderSendShadow(UINT32 Program);
