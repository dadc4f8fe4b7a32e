#include "graphics/ShaderLib.h"

#include <unistd.h>

#include "graphics/ShaderFixture.h"

namespace {

constexpr const char* VARIANTS = "void main() {\n"
                                 "    gl_FragColor = vec4(0.0, 0.0, 1.0, 1.0);\n"
                                 "#ifdef L_AMBDIR\n"
                                 "    gl_FragColor.r = 1.0;\n"
                                 "#endif\n"
                                 "#ifdef SKINNING\n"
                                 "    gl_FragColor.g = 1.0;\n"
                                 "#endif\n"
                                 "}\n";

class ShaderLibTest : public ShaderFixture {
protected:
    void SetUp() override {
        ShaderFixture::SetUp();
        if (!IsSkipped()) {
            WriteShaders("Quad", PLAIN_VERTEX, "Quad", VARIANTS);
        }
    }

    // Standard output seen on standard error, where death tests look: the log stands there once from each of the two.
    static void RequestWithOutputOnStandardError(const char* PixelShader, const char* VertexShader) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        ShaderGetProgram(PixelShader, VertexShader);
    }
};

TEST_F(ShaderLibTest, TheSameRequestGivesTheSameProgram) {
    const UINT32 Program = ShaderGetProgram("Quad", "Quad", Macros({LIGHT_AMBDIR}));
    EXPECT_NE(Program, 0u);
    EXPECT_EQ(ShaderGetProgram("Quad", "Quad", Macros({LIGHT_AMBDIR})), Program);
    EXPECT_EQ(GShaderLib->Programs.Size(), 1u);
    EXPECT_EQ(GShaderLib->VertexShaders["QuadL_AMBDIR"].RefCount, 1);
}

TEST_F(ShaderLibTest, EachListOfMacrosIsItsOwnProgram) {
    const UINT32 Plain = ShaderGetProgram("Quad", "Quad");
    const UINT32 Lit = ShaderGetProgram("Quad", "Quad", Macros({LIGHT_AMBDIR}));
    const UINT32 Both = ShaderGetProgram("Quad", "Quad", Macros({LIGHT_AMBDIR, "SKINNING"}));
    EXPECT_EQ(DrawnColor(Plain), (SRgb{0, 0, 255}));
    EXPECT_EQ(DrawnColor(Lit), (SRgb{255, 0, 255}));
    EXPECT_EQ(DrawnColor(Both), (SRgb{255, 255, 255}));
    EXPECT_NE(Record(Lit).VertexShader, Record(Both).VertexShader);
    EXPECT_NE(Record(Lit).PixelShader, Record(Both).PixelShader);
}

TEST_F(ShaderLibTest, TheOrderOfTheMacrosIsPartOfTheRequest) {
    EXPECT_NE(ShaderGetProgram("Quad", "Quad", Macros({"A", "B"})),
              ShaderGetProgram("Quad", "Quad", Macros({"B", "A"})));
}

TEST_F(ShaderLibTest, ProgramsShareAVertexShader) {
    WriteText("Data/Shaders/Other.psh", VARIANTS);
    const UINT32 First = ShaderGetProgram("Quad", "Quad");
    const UINT32 Second = ShaderGetProgram("Other", "Quad");
    EXPECT_NE(First, Second);
    EXPECT_EQ(Record(First).VertexShader, Record(Second).VertexShader);
    EXPECT_EQ(GShaderLib->VertexShaders["Quad"].RefCount, 2);
    EXPECT_EQ(GShaderLib->PixelShaders["Other"].RefCount, 1);
}

TEST_F(ShaderLibTest, ProgramsShareAPixelShader) {
    WriteText("Data/Shaders/Other.vsh", PLAIN_VERTEX);
    const UINT32 First = ShaderGetProgram("Quad", "Quad");
    const UINT32 Second = ShaderGetProgram("Quad", "Other");
    EXPECT_NE(First, Second);
    EXPECT_EQ(Record(First).PixelShader, Record(Second).PixelShader);
    EXPECT_EQ(GShaderLib->PixelShaders["Quad"].RefCount, 2);
}

TEST_F(ShaderLibTest, TheTextIsMacrosThenPrefixThenFileWithoutCarriageReturns) {
    WriteShaders("Crlf", "void main() {\r\n gl_Position = gl_Vertex; }\r\n", "Crlf", VARIANTS);
    const UINT32 Program = ShaderGetProgram("Crlf", "Crlf", Macros({"A", "B"}));
    EXPECT_EQ(Source(Record(Program).VertexShader),
              "#define A\n#define B\n"
              "\t\t\t\t\t\t uniform mat4 ViewMatrix;\t\t\t\t\t\t uniform mat4 ProjectionMatrix;"
              "void main() {\n gl_Position = gl_Vertex; }\n");
    EXPECT_EQ(Source(Record(Program).PixelShader), std::string("#define A\n#define B\n") + VARIANTS);
}

TEST_F(ShaderLibTest, APixelShaderMayBeginWithAnExtension) {
    WriteText("Data/Shaders/Lod.psh", "#extension GL_ARB_shader_texture_lod : require\n"
                                      "uniform sampler2D Texture;\n"
                                      "void main() { gl_FragColor = texture2DLod(Texture, vec2(0.5), 0.0); }\n");
    EXPECT_NE(ShaderGetProgram("Lod", "Quad", Macros({"A"})), 0u);
}

TEST_F(ShaderLibTest, TheLongestMacroIsDefinedAndALongerOneFails) {
    const std::string Longest(SHADER_MACRO_MAX, 'M');
    WriteText("Data/Shaders/Long.psh", "#ifdef " + Longest + "\nvoid main() { gl_FragColor = vec4(1.0); }\n#endif\n");
    const UINT32 Program = ShaderGetProgram("Long", "Quad", Macros({Longest.c_str()}));
    EXPECT_EQ(DrawnColor(Program), (SRgb{255, 255, 255}));
    const std::string TooLong = Longest + "M";
    EXPECT_DEATH(ShaderGetProgram("Long", "Quad", Macros({TooLong.c_str()})), "SHADER_MACRO_MAX.*GameShader");
}

TEST_F(ShaderLibTest, AMissingFileIsLeftOutInSilence) {
    testing::internal::CaptureStdout();
    const UINT32 Program = ShaderGetProgram("Quad", "NoSuchFile");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(Record(Program).VertexShader, 0u);
    // The fixed vertex stage takes the missing one's place.
    EXPECT_EQ(DrawnColor(Program), (SRgb{0, 0, 255}));
}

TEST_F(ShaderLibTest, AShaderThatDoesNotCompileIsFatalWithItsLog) {
    WriteText("Data/Shaders/Broken.psh", "void main() { gl_FragColor = NoSuchName; }\n");
    EXPECT_FATAL(RequestWithOutputOnStandardError("Broken", "Quad"), "NoSuchName(.|\n)*NoSuchName");
    const std::string Log = ReadText("error.log");
    EXPECT_EQ(Log.find("-SHADER COMPILE ERROR-\n"), 0u);
    EXPECT_NE(Log.find("NoSuchName"), std::string::npos);
}

TEST_F(ShaderLibTest, AProgramThatDoesNotLinkIsFatalWithItsLog) {
    WriteText("Data/Shaders/Unlinked.psh",
              "vec4 NoSuchFunction();\nvoid main() { gl_FragColor = NoSuchFunction(); }\n");
    EXPECT_FATAL(RequestWithOutputOnStandardError("Unlinked", "Quad"), "NoSuchFunction(.|\n)*NoSuchFunction");
    const std::string Log = ReadText("error.log");
    EXPECT_EQ(Log.find("-SHADER PRORAM LINK ERROR-\n"), 0u);
    EXPECT_NE(Log.find("NoSuchFunction"), std::string::npos);
}

TEST_F(ShaderLibTest, FreeDeletesEverythingThatWasMade) {
    const UINT32 Program = ShaderGetProgram("Quad", "Quad");
    ShaderGetProgram("Quad", "NoSuchFile");
    const UINT32 VertexShader = Record(Program).VertexShader;
    const UINT32 PixelShader = Record(Program).PixelShader;
    ShaderLibFree();
    EXPECT_EQ(GShaderLib, nullptr);
    EXPECT_FALSE(glIsProgram(Program));
    EXPECT_FALSE(glIsShader(VertexShader));
    EXPECT_FALSE(glIsShader(PixelShader));
}

} // namespace
