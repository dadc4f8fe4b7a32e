// Whether a setter called OpenGL is seen by changing the uniform behind the library's back first: a call that is left
// out leaves the foreign value.
#include <cmath>
#include <functional>

#include "graphics/ShaderFixture.h"

namespace {

constexpr const char* UNIFORMS = "uniform int I;\n"
                                 "uniform float F1;\n"
                                 "uniform vec2 F2;\n"
                                 "uniform vec3 F3;\n"
                                 "uniform vec4 F4;\n"
                                 "uniform mat4 M;\n"
                                 "uniform mat4 Array[2];\n"
                                 "void main() {\n"
                                 "    gl_FragColor = vec4(float(I) + F1 + F2.x + F3.x + F4.x)\n"
                                 "                   + M * F4 + Array[0] * F4 + Array[1] * F4;\n"
                                 "}\n";

// One setter as a function of its floats, and how OpenGL itself sets the same uniform.
struct SSetter {
    const char* Name;
    INT32 Floats;
    std::function<void(const float*, UINT32)> Set;
    std::function<void(INT32, const float*)> SetForeign;
};

const SSetter SETTERS[] = {
    {"F1", 1, [](const float* v, UINT32 Program) { ShaderSetUniform1f(*v, Program, "F1"); },
     [](INT32 Location, const float* v) { glUniform1f(Location, *v); }},
    {"F2", 2, [](const float* v, UINT32 Program) { ShaderSetUniform2fv(v, Program, "F2"); },
     [](INT32 Location, const float* v) { glUniform2fv(Location, 1, v); }},
    {"F3", 3, [](const float* v, UINT32 Program) { ShaderSetUniform3fv(v, Program, "F3"); },
     [](INT32 Location, const float* v) { glUniform3fv(Location, 1, v); }},
    {"F4", 4, [](const float* v, UINT32 Program) { ShaderSetUniform4fv(v, Program, "F4"); },
     [](INT32 Location, const float* v) { glUniform4fv(Location, 1, v); }},
    {"M", 16, [](const float* v, UINT32 Program) { ShaderSetUniformMatrices(v, Program, "M", 1); },
     [](INT32 Location, const float* v) { glUniformMatrix4fv(Location, 1, GL_FALSE, v); }},
};

class ShaderUniformTest : public ShaderFixture {
protected:
    void SetUp() override {
        ShaderFixture::SetUp();
        if (IsSkipped()) {
            return;
        }
        WriteShaders("Uniforms", PLAIN_VERTEX, "Uniforms", UNIFORMS);
        Program = ShaderGetProgram("Uniforms", "Uniforms");
        glUseProgram(Program);
    }

    INT32 Location(const char* Name) const { return glGetUniformLocation(Program, Name); }

    std::vector<float> Value(const char* Name, std::size_t Floats) const {
        std::vector<float> v(16);
        glGetUniformfv(Program, Location(Name), v.data());
        v.resize(Floats);
        return v;
    }

    INT32 IntValue(const char* Name) const {
        INT32 v = 0;
        glGetUniformiv(Program, Location(Name), &v);
        return v;
    }

    static std::vector<float> Counting(INT32 Floats, float First) {
        std::vector<float> v;
        for (INT32 i = 0; i < Floats; i++) {
            v.push_back(First + static_cast<float>(i));
        }
        return v;
    }

    // Compiles a program that uses the given uniforms and makes it the current one.
    void UseProgramWith(const std::string& Declarations, const std::string& Sum) {
        WriteText("Data/Shaders/Given.psh", Declarations + "void main() { gl_FragColor = " + Sum + "; }\n");
        Program = ShaderGetProgram("Given", "Uniforms");
        glUseProgram(Program);
    }

    UINT32 Program = 0;
};

TEST_F(ShaderUniformTest, AValueThatIsUnchangedIsNotSentAgain) {
    for (const SSetter& Setter : SETTERS) {
        SCOPED_TRACE(Setter.Name);
        const std::vector<float> Wanted = Counting(Setter.Floats, 1.0f);
        const std::vector<float> Foreign = Counting(Setter.Floats, 100.0f);
        Setter.Set(Wanted.data(), Program);
        EXPECT_EQ(Value(Setter.Name, Wanted.size()), Wanted);
        Setter.SetForeign(Location(Setter.Name), Foreign.data());
        Setter.Set(Wanted.data(), Program);
        EXPECT_EQ(Value(Setter.Name, Wanted.size()), Foreign);
    }
}

TEST_F(ShaderUniformTest, AChangeInAnyComponentIsSent) {
    for (const SSetter& Setter : SETTERS) {
        SCOPED_TRACE(Setter.Name);
        std::vector<float> Wanted = Counting(Setter.Floats, 1.0f);
        Setter.Set(Wanted.data(), Program);
        for (float& Component : Wanted) {
            Component += 50.0f;
            Setter.Set(Wanted.data(), Program);
            EXPECT_EQ(Value(Setter.Name, Wanted.size()), Wanted);
        }
    }
}

TEST_F(ShaderUniformTest, AFirstSendOfZeroIsLeftOut) {
    for (const SSetter& Setter : SETTERS) {
        SCOPED_TRACE(Setter.Name);
        const std::vector<float> Zero(static_cast<std::size_t>(Setter.Floats));
        const std::vector<float> Foreign = Counting(Setter.Floats, 100.0f);
        Setter.SetForeign(Location(Setter.Name), Foreign.data());
        Setter.Set(Zero.data(), Program);
        EXPECT_EQ(Value(Setter.Name, Zero.size()), Foreign);
    }
}

TEST_F(ShaderUniformTest, IntegersAreRememberedAsIntegers) {
    glUniform1i(Location("I"), 9);
    ShaderSetUniform1i(0, Program, "I");
    EXPECT_EQ(IntValue("I"), 9);
    ShaderSetUniform1i(3, Program, "I");
    EXPECT_EQ(IntValue("I"), 3);
    glUniform1i(Location("I"), 9);
    ShaderSetUniform1i(3, Program, "I");
    EXPECT_EQ(IntValue("I"), 9);
}

TEST_F(ShaderUniformTest, AMatrixArrayIsAlwaysSentWhole) {
    const std::vector<float> Two = Counting(32, 1.0f);
    const std::vector<float> Foreign(32, 7.0f);
    ShaderSetUniformMatrices(Two.data(), Program, "Array", 2);
    glUniformMatrix4fv(Location("Array"), 2, GL_FALSE, Foreign.data());
    ShaderSetUniformMatrices(Two.data(), Program, "Array", 2);
    EXPECT_EQ(Value("Array[0]", 16), Counting(16, 1.0f));
    EXPECT_EQ(Value("Array[1]", 16), Counting(16, 17.0f));
}

TEST_F(ShaderUniformTest, EachProgramRemembersItsOwnValues) {
    ShaderSetUniform1i(5, Program, "I");
    Program = ShaderGetProgram("Uniforms", "Uniforms", Macros({"OTHER"}));
    glUseProgram(Program);
    ShaderSetUniform1i(5, Program, "I");
    EXPECT_EQ(IntValue("I"), 5);
}

TEST_F(ShaderUniformTest, AUniformThatTheProgramLacksIsIgnored) {
    const float v[16] = {1.0f};
    ShaderSetUniform4fv(v, Program, "NoSuchUniform");
    ShaderSetUniformMatrices(v, Program, "NoSuchUniform", 1);
    SUniformSlot* Slot = nullptr;
    EXPECT_EQ(ShaderGetUniform(Program, "NoSuchUniform", Slot), 1);
    EXPECT_EQ(Slot->Location, -1);
}

TEST_F(ShaderUniformTest, AProgramThatTheLibraryDoesNotKnowIsIgnored) {
    const float v[16] = {1.0f};
    const UINT32 Unknown = Program + 1000;
    ShaderSetUniform1i(1, Unknown, "I");
    ShaderSetUniform3fv(v, Unknown, "F3");
    ShaderSetUniformMatrices(v, Unknown, "M", 1);
    SUniformSlot Other;
    SUniformSlot* Slot = &Other;
    EXPECT_EQ(ShaderGetUniform(Unknown, "I", Slot), 0);
    EXPECT_EQ(Slot, nullptr);
    EXPECT_EQ(Value("F3", 3), (std::vector<float>{0.0f, 0.0f, 0.0f}));
}

TEST_F(ShaderUniformTest, ANullValueFailsTheAssertion) {
    EXPECT_DEATH(ShaderSetUniform2fv(nullptr, Program, "F2"), ": v, file GameShader");
    EXPECT_DEATH(ShaderSetUniform3fv(nullptr, Program, "F3"), ": v, file GameShader");
    EXPECT_DEATH(ShaderSetUniform4fv(nullptr, Program, "F4"), ": v, file GameShader");
    EXPECT_DEATH(ShaderSetUniformMatrices(nullptr, Program, "M", 1), ": v, file GameShader");
}

TEST_F(ShaderUniformTest, TheThreeMatricesGoOutUnderTheirNames) {
    WriteShaders("Matrices",
                 "uniform mat4 WorldMatrix;\n"
                 "void main() { gl_Position = ProjectionMatrix * ViewMatrix * WorldMatrix * gl_Vertex; }\n",
                 "Matrices", "void main() { gl_FragColor = vec4(1.0); }\n");
    Program = ShaderGetProgram("Matrices", "Matrices");
    glUseProgram(Program);
    for (INT32 i = 0; i < 16; i++) {
        const auto Value = static_cast<float>(i);
        GWorldMatrix[i] = Value;
        GViewMatrix[i] = 100.0f + Value;
        GProjectionMatrix[i] = 200.0f + Value;
    }
    ShaderSendWorldMatrix(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    EXPECT_EQ(Value("WorldMatrix", 16), Counting(16, 0.0f));
    EXPECT_EQ(Value("ViewMatrix", 16), Counting(16, 100.0f));
    EXPECT_EQ(Value("ProjectionMatrix", 16), Counting(16, 200.0f));
}

TEST_F(ShaderUniformTest, FogAndLightBeginWithTheirStartValues) {
    UseProgramWith("uniform vec3 FogColor, AmbientColor, LightColor;\n"
                   "uniform vec2 FogData, LightTransDist;\n"
                   "uniform vec4 LightPos, LightDir;\n",
                   "vec4(FogColor + AmbientColor + LightColor, FogData.x + LightTransDist.x) + LightPos + LightDir");
    ShaderSendFog(Program);
    ShaderSendLight(Program);
    EXPECT_EQ(Value("FogColor", 3), (std::vector<float>{0.2f, 0.3f, 0.4f}));
    EXPECT_EQ(Value("FogData", 2), (std::vector<float>{2000.0f, 0.5f}));
    EXPECT_EQ(Value("LightPos", 4), (std::vector<float>{0.0f, 0.0f, 200.0f, 500.0f}));
    EXPECT_EQ(Value("AmbientColor", 3), (std::vector<float>{0.2f, 0.25f, 0.3f}));
    EXPECT_EQ(Value("LightColor", 3), (std::vector<float>{0.7f, 0.6f, 0.5f}));
    EXPECT_EQ(Value("LightTransDist", 2), (std::vector<float>{200.0f, 250.0f}));
    const std::vector<float> Direction = Value("LightDir", 4);
    const float Component = std::sqrt(1.0f / 3.0f);
    EXPECT_NEAR(Direction[0], -Component, 1e-6f);
    EXPECT_NEAR(Direction[1], -Component, 1e-6f);
    EXPECT_NEAR(Direction[2], Component, 1e-6f);
    EXPECT_EQ(Direction[3], 1.0f);
    EXPECT_EQ(GLightDir.z, 0.5f) << "only what is sent is normalised";
}

TEST_F(ShaderUniformTest, ASpotLightSendsNoAmbientColor) {
    UseProgramWith("uniform vec3 AmbientColor, LightColor;\n", "vec4(AmbientColor + LightColor, 1.0)");
    GCurLight = LIGHT_SPOT;
    ShaderSendLight(Program);
    EXPECT_EQ(Value("AmbientColor", 3), (std::vector<float>{0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(Value("LightColor", 3), (std::vector<float>{0.7f, 0.6f, 0.5f}));
    GCurLight = LIGHT_AMBDIR;
    ShaderSendLight(Program);
    EXPECT_EQ(Value("AmbientColor", 3), (std::vector<float>{0.2f, 0.25f, 0.3f}));
}

TEST_F(ShaderUniformTest, ShadowBindsTheMapOnSevenAndTheProjectionOnSix) {
    UseProgramWith("uniform sampler2D ShadowMap, ProjMap;\nuniform mat4 SMMatrix;\n",
                   "texture2D(ShadowMap, SMMatrix[0].xy) + texture2D(ProjMap, SMMatrix[1].xy)");
    glGenTextures(1, &GShadowTexture);
    glGenTextures(1, &GProjTexture);
    GSMMatrix[3] = 4.0f;
    ShaderSendShadow(Program);
    EXPECT_EQ(IntValue("ShadowMap"), 7);
    EXPECT_EQ(IntValue("ProjMap"), 6);
    EXPECT_EQ(Value("SMMatrix", 4)[3], 4.0f);
    const auto Bound = [](GLenum Unit) {
        INT32 Texture = 0;
        glActiveTexture(Unit);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &Texture);
        return static_cast<UINT32>(Texture);
    };
    EXPECT_EQ(Bound(GL_TEXTURE6), GProjTexture);
    EXPECT_EQ(Bound(GL_TEXTURE7), GShadowTexture);
    INT32 Wrap = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &Wrap);
    EXPECT_EQ(Wrap, GL_CLAMP_TO_EDGE);
    glDeleteTextures(1, &GShadowTexture);
    glDeleteTextures(1, &GProjTexture);
    GShadowTexture = GProjTexture = 0;
    GSMMatrix = Mat4();
}

} // namespace
