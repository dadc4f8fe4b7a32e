#include "graphics/ShaderLib.h"

#include "support/GlFixture.h"

#include <GL/glew.h>
#include <unistd.h>

namespace {

using Floats = std::vector<float>;

constexpr const char* BLUE = "void main() { gl_FragColor = vec4(0.0, 0.0, 1.0, 1.0); }\n";
constexpr const char* UNIFORMS =
    "uniform int I; uniform float F1; uniform vec2 F2; uniform vec3 F3; uniform vec4 F4; uniform mat4 M, Array[2];\n"
    "uniform mat4 WorldMatrix, SMMatrix; uniform sampler2D ShadowMap, ProjMap;\n"
    "uniform vec2 FogData, LightTransDist; uniform vec4 LightPos, LightDir;\n"
    "uniform vec3 FogColor, AmbientColor, LightColor;\n"
    "void main() {\n"
    "    gl_FragColor = vec4(float(I) + F1 + F2.x + F3.x + F4.x) + (M + Array[0] + Array[1]) * F4\n"
    "        + texture2D(ShadowMap, SMMatrix[0].xy) + texture2D(ProjMap, WorldMatrix[1].xy) + LightPos + LightDir\n"
    "        + vec4(FogColor + AmbientColor + LightColor, FogData.x + LightTransDist.x);\n"
    "}\n";

struct SSetter {
    const char* Name;
    std::size_t Count;
    void (*Set)(const float* v, UINT32 Program);
};
const SSetter SETTERS[] = {
    {"I", 1, [](const float* v, UINT32 Program) { ShaderSetUniform1i(static_cast<INT32>(*v), Program, "I"); }},
    {"F1", 1, [](const float* v, UINT32 Program) { ShaderSetUniform1f(*v, Program, "F1"); }},
    {"F2", 2, [](const float* v, UINT32 Program) { ShaderSetUniform2fv(v, Program, "F2"); }},
    {"F3", 3, [](const float* v, UINT32 Program) { ShaderSetUniform3fv(v, Program, "F3"); }},
    {"F4", 4, [](const float* v, UINT32 Program) { ShaderSetUniform4fv(v, Program, "F4"); }},
    {"M", 16, [](const float* v, UINT32 Program) { ShaderSetUniformMatrices(v, Program, "M", 1); }},
};

class ShaderLibTest : public GlFixture {
protected:
    void Start() override {
        ShaderLibInit();
        WriteShaders("Quad", "void main() { gl_Position = gl_Vertex; }\n", "Quad", BLUE);
        WriteShaders("All", "void main() { gl_Position = ProjectionMatrix * ViewMatrix * gl_Vertex; }\n", "All",
                     UNIFORMS);
    }
    void Finish() override { GShaderLib ? ShaderLibFree() : void(); }

    static UINT32 Use(const GString& PixelShader, const GString& VertexShader, std::vector<const char*> Macros = {}) {
        GArray<const char*> List;
        std::for_each(Macros.begin(), Macros.end(), [&](const char* Macro) { List.Add(Macro); });
        const UINT32 Program = ShaderGetProgram(PixelShader, VertexShader, List);
        glUseProgram(Program);
        return Program;
    }
    static const SShaderProgram& Record(UINT32 Program) { return *GShaderLib->ProgramsById.at(Program); }

    // With standard output on standard error, where death tests look.
    static void UseAloud(const char* PixelShader) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        Use(PixelShader, "Quad");
    }

    static std::string Source(UINT32 Shader) {
        char Text[1000] = {};
        glGetShaderSource(Shader, sizeof(Text), nullptr, Text);
        return Text;
    }

    static Floats Value(UINT32 Program, const char* Name, std::size_t Count) {
        Floats v(16);
        glGetUniformfv(Program, glGetUniformLocation(Program, Name), v.data());
        v.resize(Count);
        return v;
    }
};

TEST_F(ShaderLibTest, EqualRequestsShareAProgramAndEqualHalvesAShader) {
    const std::vector<const char*> Lists[] = {{}, {"A"}, {"A", "B"}, {"B", "A"}};
    UINT32 Programs[32]; // all twice
    for (int i = 0; i < 32; i++) {
        Programs[i] = Use(i & 1 ? "Quad" : "All", i & 2 ? "Quad" : "All", Lists[i / 4 % 4]);
    }
    for (int i = 0; i < 32; i++) {
        const SShaderProgram& A = Record(Programs[i]);
        EXPECT_EQ(GShaderLib->VertexShaders[A.VSKey].RefCount, 2);
        EXPECT_EQ(GShaderLib->PixelShaders[A.PSKey].RefCount, 2);
        for (int j = 0; j < 32; j++) {
            const int Differing = (i ^ j) & 15;
            EXPECT_EQ(A.Program == Programs[j], Differing == 0);
            EXPECT_EQ(A.VertexShader == Record(Programs[j]).VertexShader, (Differing & ~1) == 0);
            EXPECT_EQ(A.PixelShader == Record(Programs[j]).PixelShader, (Differing & ~2) == 0);
        }
    }
    const SShaderProgram Made = Record(Programs[0]);
    ShaderLibFree();
    glUseProgram(0);
    EXPECT_FALSE(glIsProgram(Made.Program) || glIsShader(Made.VertexShader) || glIsShader(Made.PixelShader));
}

TEST_F(ShaderLibTest, TheTextIsMacrosThenPrefixThenFileWithoutCarriageReturns) {
    WriteText("Data/Shaders/Crlf.vsh", "void main() {\r\n gl_Position = gl_Vertex; }\r\n");
    const SShaderProgram& Program = Record(Use("Quad", "Crlf", {"A", "B"}));
    EXPECT_EQ(Source(Program.VertexShader),
              "#define A\n#define B\n"
              "\t\t\t\t\t\t uniform mat4 ViewMatrix;\t\t\t\t\t\t uniform mat4 ProjectionMatrix;"
              "void main() {\n gl_Position = gl_Vertex; }\n");
    EXPECT_EQ(Source(Program.PixelShader), std::string("#define A\n#define B\n") + BLUE);
}

TEST_F(ShaderLibTest, TheLongestMacroIsDefinedAndALongerOneFails) {
    const std::string Longest(54, 'M');
    WriteText("Data/Shaders/Long.psh", "#ifndef " + Longest + "\n#error\n#endif\n" + BLUE);
    EXPECT_NE(Use("Long", "Quad", {Longest.c_str()}), 0u);
    EXPECT_DEATH(Use("Long", "Quad", {(Longest + "M").c_str()}), "SHADER_MACRO_MAX.*GameShader");
}

TEST_F(ShaderLibTest, AMissingFileIsLeftOutInSilence) {
    EXPECT_EQ(PrintedBy([] { EXPECT_EQ(Record(Use("Quad", "NoSuchFile")).VertexShader, 0u); }), "");
    glRectf(-1.0f, 1.0f, 1.0f, -1.0f);
    EXPECT_EQ(ReadWindow().At(100, 100), (SRgb{0, 0, 255})) << "the fixed vertex stage takes its place";
}

TEST_F(ShaderLibTest, FailuresOfCompilingAndLinkingAreFatalWithTheirLog) {
    WriteText("Data/Shaders/Uncompiled.psh", "void main() { gl_FragColor = NoSuchName; }\n");
    WriteText("Data/Shaders/Unlinked.psh", "vec4 NoSuchName();\nvoid main() { gl_FragColor = NoSuchName(); }\n");
    for (const auto& [Name, Title] :
         {std::pair{"Uncompiled", "-SHADER COMPILE ERROR-\n"}, std::pair{"Unlinked", "-SHADER PRORAM LINK ERROR-\n"}}) {
        WriteText("error.log", "");
        EXPECT_FATAL(UseAloud(Name), "NoSuchName(.|\n)*NoSuchName") << "once on each output";
        EXPECT_EQ(ReadText("error.log").find(Title), 0u);
        EXPECT_NE(ReadText("error.log").find("NoSuchName"), std::string::npos);
    }
}

// Without a program in use every call of OpenGL's is an error, so that none is known to have been made.
TEST_F(ShaderLibTest, OnlyAChangeIsSentAndEachProgramBeginsAtZero) {
    for (const UINT32 Program : {Use("All", "All"), Use("All", "All", {"OTHER"})}) {
        for (const SSetter& Setter : SETTERS) {
            SCOPED_TRACE(Setter.Name);
            Floats Wanted(Setter.Count);
            for (std::size_t i = 0; i <= Setter.Count; i++) {
                glUseProgram(0);
                Setter.Set(Wanted.data(), Program);
                EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "sent once more";
                glUseProgram(Program);
                Wanted[i % Setter.Count] += 5.0f;
                Setter.Set(Wanted.data(), Program);
                EXPECT_EQ(Value(Program, Setter.Name, Setter.Count), Wanted);
            }
        }
    }
    const UINT32 Program = Use("All", "All");
    Floats Two(32, 1.0f);
    for (const float Last : {2.0f, 3.0f}) { // of an array of matrices the first tells nothing about the second
        Two[31] = Last;
        ShaderSetUniformMatrices(Two.data(), Program, "Array", 2);
        EXPECT_EQ(Value(Program, "Array[1]", 16).back(), Last);
    }
}

TEST_F(ShaderLibTest, UnknownUniformsAndProgramsAreIgnoredAndNullIsNot) {
    const UINT32 Program = Use("All", "All");
    const Floats v(16, 1.0f);
    ShaderSetUniformMatrices(v.data(), Program, "NoSuchUniform", 1);
    for (const SSetter& Setter : SETTERS) {
        Setter.Set(v.data(), Program + 1000);
        EXPECT_EQ(Value(Program, Setter.Name, Setter.Count), Floats(Setter.Count)) << Setter.Name;
        if (Setter.Count > 1) {
            EXPECT_DEATH(Setter.Set(nullptr, Program), ": v, file GameShader") << Setter.Name;
        }
    }
}

TEST_F(ShaderLibTest, TheStateGoesOutUnderItsNames) {
    const UINT32 Program = Use("All", "All");
    GWorldMatrix[12] = GViewMatrix[13] = GProjectionMatrix[14] = GSMMatrix[3] = 8.0f;
    ShaderSendWorldMatrix(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    ShaderSendFog(Program);
    GCurLight = LIGHT_SPOT;
    ShaderSendLight(Program);
    EXPECT_EQ(Value(Program, "AmbientColor", 3), Floats(3)) << "a spot light sends none";
    GCurLight = LIGHT_AMBDIR;
    ShaderSendLight(Program);
    glGenTextures(1, &GShadowTexture);
    glGenTextures(1, &GProjTexture);
    ShaderSendShadow(Program);
    const float Third = std::sqrt(1.0f / 3.0f);
    const std::pair<const char*, Floats> Expected[] = {
        {"WorldMatrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 8, 0, 0, 1}},
        {"ViewMatrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 8, 0, 1}},
        {"ProjectionMatrix", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 8, 1}},
        {"SMMatrix", {0, 0, 0, 8}},
        {"ShadowMap", {7}},
        {"ProjMap", {6}},
        {"FogColor", {0.2f, 0.3f, 0.4f}},
        {"FogData", {2000.0f, 0.5f}},
        {"LightPos", {0.0f, 0.0f, 200.0f, 500.0f}},
        {"LightDir", {-Third, -Third, Third, 1.0f}},
        {"AmbientColor", {0.2f, 0.25f, 0.3f}},
        {"LightColor", {0.7f, 0.6f, 0.5f}},
        {"LightTransDist", {200.0f, 250.0f}},
    };
    for (const auto& [Name, Wanted] : Expected) {
        const Floats Sent = Value(Program, Name, Wanted.size());
        for (std::size_t i = 0; i < Wanted.size(); i++) {
            EXPECT_NEAR(Sent[i], Wanted[i], 1e-6f) << Name << " " << i;
        }
    }
    EXPECT_EQ(GetInteger(GL_TEXTURE_BINDING_2D), static_cast<INT32>(GProjTexture));
    glActiveTexture(GL_TEXTURE7);
    EXPECT_EQ(GetInteger(GL_TEXTURE_BINDING_2D), static_cast<INT32>(GShadowTexture));
    EXPECT_EQ(TextureParameter(GShadowTexture, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    glDeleteTextures(1, &GShadowTexture);
    glDeleteTextures(1, &GProjTexture);
    GShadowTexture = GProjTexture = 0;
}

} // namespace
