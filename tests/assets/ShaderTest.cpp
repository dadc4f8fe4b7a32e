// The shipped shaders: they compile and link under every request that the engine makes, take what it sends, and draw
// what they promise.
#include "assets/GameFiles.h"
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "scene/DrawHelpers.h"
#include "support/GlFixture.h"

#include <GL/glew.h>
#include <cmath>

namespace {

struct SRequest {
    const char* Pixel;
    const char* Vertex;
    std::vector<const char*> Macros;
    std::vector<const char*> Uniforms; // what must have an effect
};

const std::vector<SRequest> REQUESTS = {
    {"GUI", "GUI", {}, {"ViewMatrix", "ProjectionMatrix", "Texture"}},
    {"Sprite", "Sprite", {}, {"ViewMatrix", "ProjectionMatrix", "Texture"}},
    {"FSQuad", "FSQuad", {}, {"FSTex"}},
    {"PostProcess", "FSQuad", {}, {"FSTex"}},
    {"ColorOnly", "ColorOnly", {}, {"ViewMatrix", "ProjectionMatrix"}},
    {"Sky", "Sky", {}, {"ViewMatrix", "ProjectionMatrix", "SkyTex", "FogColor", "FogData"}},
    {"Terrain",
     "Terrain",
     {LIGHT_AMBDIR},
     {"WorldMatrix", "ViewMatrix", "ProjectionMatrix", "CameraPos", "FogColor", "FogData", "LightDir", "AmbientColor",
      "LightColor", "SMMatrix", "ShadowMap", "NormalMap", "DetailMap", "DetailMapN", "DetailMap2", "DetailMap2N",
      "Extents", "DetailSize"}},
    {"Terrain",
     "Terrain",
     {LIGHT_SPOT},
     {"WorldMatrix", "LightPos", "LightDir", "LightColor", "LightTransDist", "SMMatrix", "ShadowMap", "ProjMap"}},
    {"RenderShadow", "RenderShadow", {}, {"WorldMatrix", "ViewMatrix", "ProjectionMatrix", "Texture"}},
    {"RenderShadow", "RenderShadow", {"SKINNING"}, {"WorldMatrix", "ViewMatrix", "ProjectionMatrix", "Texture"}},
};

// Half sizes of the ground that the cases draw, small enough to keep its fog out and large enough to be known as
// ground.
constexpr float GROUND = 200.0f;

class Shaders : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        std::filesystem::copy(GamePath("Data/Shaders"), "Data/Shaders", std::filesystem::copy_options::recursive);
        ShaderLibInit();
    }
    void TearDown() override {
        if (GShaderLib) {
            ShaderLibFree();
            GShaderLib = nullptr;
        }
        GlFixture::TearDown();
    }

    static UINT32 Program(const SRequest& Request) {
        GArray<const char*> Macros;
        for (const char* Macro : Request.Macros) {
            Macros.Add(Macro);
        }
        return ShaderGetProgram(Request.Pixel, Request.Vertex, Macros);
    }

    static UINT32 Use(const char* Name, const char* Macro = nullptr) {
        const UINT32 Id =
            Program({Name, Name, Macro ? std::vector<const char*>{Macro} : std::vector<const char*>{}, {}});
        glUseProgram(Id);
        return Id;
    }

    static void BindTexel(int Unit, UINT8 R, UINT8 G, UINT8 B, UINT8 A) {
        const UINT8 Pixel[4] = {R, G, B, A};
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(Unit));
        const UINT32 Texture = TextureFromPixels(1, 1, Pixel);
        glBindTexture(GL_TEXTURE_2D, Texture);
    }

    // Level ground under the eye at Height, lit from straight above, with a shadow map of one depth (0 to 255).
    static SRgb DrawGround(float Height, UINT8 ShadowDepth) {
        const UINT32 Id = Use("Terrain", LIGHT_AMBDIR);
        const char* const Samplers[] = {"NormalMap", "DetailMap", "DetailMapN", "DetailMap2", "DetailMap2N"};
        for (int Unit = 0; Unit < 5; ++Unit) {
            const bool Normal = Unit % 2 == 0;
            BindTexel(Unit, Normal ? 127 : 230, Normal ? 127 : 235, Normal ? 255 : 240, 0);
            ShaderSetUniform1i(Unit, Id, Samplers[Unit]);
        }
        BindTexel(7, ShadowDepth, 0, 0, 255);
        ShaderSetUniform1i(7, Id, "ShadowMap");
        const float Extents[3] = {GROUND, GROUND, GROUND};
        const float Eye[3] = {0, 0, Height};
        const float Light[4] = {0, 0, -1, 0};
        const float LightColor[3] = {1.0f, 0.84f, 0.58f};
        const float Ambient[3] = {0.1f, 0.15f, 0.2f};
        const float Fog[3] = {0.25f, 0.5f, 0.75f};
        const float FogData[2] = {1000, 2};
        ShaderSetUniform3fv(Extents, Id, "Extents");
        ShaderSetUniform3fv(Eye, Id, "CameraPos");
        ShaderSetUniform4fv(Light, Id, "LightDir");
        ShaderSetUniform3fv(LightColor, Id, "LightColor");
        ShaderSetUniform3fv(Ambient, Id, "AmbientColor");
        ShaderSetUniform3fv(Fog, Id, "FogColor");
        ShaderSetUniform2fv(FogData, Id, "FogData");
        ShaderSetUniform1f(32, Id, "DetailSize");
        SendUnitMatrices(Id);
        ClearWindow(0, 0, 0);
        DrawQuad(-1, 1, 1, -1, 0);
        return ReadWindow().At(512, 288);
    }

    // The world matrix spreads the ground; the projection brings it back to fill the window.
    static void SendUnitMatrices(UINT32 Id) {
        Mat4 World, Flat, View;
        World[0] = World[5] = World[10] = GROUND;
        Flat[0] = Flat[5] = Flat[10] = 1.0f / GROUND;
        View[0] = View[5] = View[10] = 1.0f;
        World[15] = Flat[15] = View[15] = 1.0f;
        ShaderSetUniformMatrices(World.M, Id, "WorldMatrix", 1);
        ShaderSetUniformMatrices(View.M, Id, "ViewMatrix", 1);
        ShaderSetUniformMatrices(Flat.M, Id, "ProjectionMatrix", 1);
        ShaderSetUniformMatrices(Flat.M, Id, "SMMatrix", 1);
    }

    // Whether a quad with a texture of this alpha, scaled by Scale, reaches the depth buffer.
    static bool CastsShadow(UINT8 Alpha, float Scale) {
        const UINT32 Id = Use("RenderShadow");
        Mat4 World, Flat, View;
        World[0] = World[5] = World[10] = Scale;
        Flat[0] = Flat[5] = Flat[10] = 1.0f / Scale;
        View[0] = View[5] = View[10] = View[15] = World[15] = Flat[15] = 1.0f;
        ShaderSetUniformMatrices(World.M, Id, "WorldMatrix", 1);
        ShaderSetUniformMatrices(View.M, Id, "ViewMatrix", 1);
        ShaderSetUniformMatrices(Flat.M, Id, "ProjectionMatrix", 1);
        ShaderSetUniform1i(0, Id, "Texture");
        BindTexel(0, 255, 255, 255, Alpha);
        ClearWindow(0, 0, 0);
        DrawQuad(-1, 1, 1, -1, 0);
        return ReadWindow().At(512, 288).R > 128;
    }
};

TEST_F(Shaders, EveryRequestLinksAndUsesWhatItIsSent) {
    for (const SRequest& Request : REQUESTS) {
        SCOPED_TRACE(Request.Pixel + std::string(Request.Macros.empty() ? "" : Request.Macros[0]));
        const UINT32 Id = Program(Request);
        GLint Linked = 0;
        glGetProgramiv(Id, GL_LINK_STATUS, &Linked);
        ASSERT_EQ(Linked, GL_TRUE);
        for (const char* Name : Request.Uniforms) {
            EXPECT_GE(glGetUniformLocation(Id, Name), 0) << Name;
        }
    }
}

TEST_F(Shaders, SkinnedShadowsTakeBoneIndices) {
    const UINT32 Id = Use("RenderShadow", "SKINNING");
    EXPECT_GE(glGetAttribLocation(Id, "Indices"), 0);
    EXPECT_GE(glGetUniformLocation(Id, "WorldMatrix[63]"), 0);
}

TEST_F(Shaders, SnowInShadeIsDarkerAndBluer) {
    const SRgb Lit = DrawGround(50, 255);
    const SRgb Shade = DrawGround(50, 0);
    EXPECT_GT(Lit.R, 200);
    EXPECT_LT(Shade.R, Lit.R * 2 / 3);
    EXPECT_GT(Shade.B - Shade.R, 40);
    EXPECT_GT(Shade.B - Shade.R, Lit.B - Lit.R + 20);
}

TEST_F(Shaders, FogClosesAtItsDistance) {
    const SRgb Near = DrawGround(10, 0);
    const SRgb Far = DrawGround(1000, 0);
    EXPECT_NEAR(Far.R, 64, 2);
    EXPECT_NEAR(Far.G, 128, 2);
    EXPECT_NEAR(Far.B, 191, 2);
    EXPECT_GT(std::abs(Near.R - Far.R), 10);
    EXPECT_GT(std::abs(DrawGround(500, 0).R - Far.R), 5);
}

TEST_F(Shaders, LeavesCastShadowsThroughTheirAlphaAndTheGroundAlways) {
    EXPECT_TRUE(CastsShadow(255, 2));
    EXPECT_FALSE(CastsShadow(0, 2));
    EXPECT_TRUE(CastsShadow(0, 1600));
}

TEST_F(Shaders, TheSkyThickensToFogTowardsTheHorizon) {
    const UINT32 Id = Use("Sky");
    SendUnitMatrices(Id);
    BindTexel(0, 0, 0, 255, 255);
    ShaderSetUniform1i(0, Id, "SkyTex");
    const float Fog[3] = {1, 0, 0};
    ShaderSetUniform3fv(Fog, Id, "FogColor");
    Mat4 Plain;
    Plain[0] = Plain[5] = Plain[10] = Plain[15] = 1;
    ShaderSetUniformMatrices(Plain.M, Id, "ProjectionMatrix", 1);
    // A quad at height z: its middle is the zenith, and with z = 0 all of it the horizon.
    const auto Draw = [&](float Amount, float z) {
        const float Data[2] = {Amount, 4};
        ShaderSetUniform2fv(Data, Id, "FogData");
        ClearWindow(0, 0, 0);
        DrawQuad(-1, 1, 1, -1, z);
        return ReadWindow().At(512, 288);
    };
    EXPECT_EQ(Draw(0, 0), (SRgb{0, 0, 255}));
    EXPECT_NEAR(Draw(0.5f, 0).R, 128, 2);
    EXPECT_EQ(Draw(0.5f, 0.5f), (SRgb{0, 0, 255}));
}

} // namespace
