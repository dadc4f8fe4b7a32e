// The shipped shaders: they compile and link under every request that the engine makes, and draw what they promise.
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "scene/DrawHelpers.h"
#include "support/GlFixture.h"

#include <GL/glew.h>

namespace {

class Shaders : public GlFixture {
protected:
    void Start() override {
        fs::copy(SLOPERUSH_GAME_DIR "/Data/Shaders", "Data/Shaders", fs::copy_options::recursive);
        ShaderLibInit();
    }
    void Finish() override {
        ShaderLibFree();
        GShaderLib = nullptr;
    }

    void Use(const char* Pixel, const char* Vertex, const char* Macro = nullptr, const char* Skinning = nullptr) {
        GArray<const char*> Macros;
        for (const char* Name : {Macro, Skinning}) {
            if (Name) {
                Macros.Add(Name);
            }
        }
        Id = ShaderGetProgram(Pixel, Vertex, Macros);
        glUseProgram(Id);
    }
    void Set(const char* Name, const std::vector<float>& v) const {
        const decltype(&ShaderSetUniform2fv) Setters[] = {ShaderSetUniform2fv, ShaderSetUniform3fv,
                                                          ShaderSetUniform4fv};
        Setters[v.size() - 2](v.data(), Id, Name);
    }
    void SetTexel(int Unit, const char* Name, const std::vector<UINT8>& Rgba) const {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(Unit));
        glBindTexture(GL_TEXTURE_2D, TextureFromPixels(1, 1, Rgba.data()));
        ShaderSetUniform1i(Unit, Id, Name);
    }

    // The middle of a quad that the world matrix spreads and the projection brings back to fill the window.
    SRgb Draw(float Scale, float z = 0) const {
        const auto Send = [&](const char* Name, float Size, float W = 1) {
            const float M[16] = {Size * W, 0, 0, 0, 0, Size * W, 0, 0, 0, 0, Size * W, 0, 0, 0, 0, W};
            ShaderSetUniformMatrices(M, Id, Name, 1);
        };
        Send("WorldMatrix", Scale);
        Send("ViewMatrix", 1);
        Send("ProjectionMatrix", 1 / Scale, Depth);
        Send("SMMatrix", 1 / Scale);
        ClearWindow(0, 0, 0);
        DrawQuad(-1, 1, 1, -1, z);
        return ReadWindow().At(512, 288);
    }

    // Level ground under the eye at Height, lit from straight above, with a shadow map of one depth (0 to 255).
    SRgb DrawGround(float Height, UINT8 ShadowDepth, float Air = 1, float Cloud = 0) {
        Use("Terrain", "Terrain", LIGHT_AMBDIR);
        SetTexel(0, "NormalMap", {127, 127, 255, 0});
        SetTexel(1, "DetailMap", {127, 127, 127, 0});
        SetTexel(3, "DetailMap2", {127, 127, 127, 127});
        SetTexel(7, "ShadowMap", {ShadowDepth, 0, 0, 255});
        Set("Extents", {200, 200, 200});
        Set("CameraPos", {0, 0, Height});
        Set("LightDir", {0, 0, -1, Cloud});
        Set("LightColor", {1.0f, 0.84f, 0.58f});
        Set("AmbientColor", {0.1f, 0.15f, 0.2f});
        Set("FogColor", {0.25f * Air, 0.5f * Air, 0.75f * Air});
        Set("FogData", {1000, 2});
        ShaderSetUniform1f(32, Id, "DetailSize");
        return Draw(200);
    }

    // Without sun, facing the eye.
    SRgb DrawMesh(const char* Name, UINT8 Green, UINT8 Alpha, float Air) {
        Use(Name, Name, LIGHT_AMBDIR);
        SetTexel(0, "Texture", {200, Green, 50, Alpha});
        SetTexel(6, "ShadowMap", {255, 0, 0, 255});
        Set("CameraPos", {0, 0, 5});
        Set("LightDir", {0, 0, -1, 0});
        Set("AmbientColor", {0.1f, 0.1f, 0.1f});
        Set("FogColor", {Air, Air, Air});
        Set("FogData", {1000, 2});
        return Draw(2);
    }

    UINT32 Id = 0;
    float Depth = 1; // world units before the eye at which shaders find what is drawn
};

TEST_F(Shaders, EveryRequestLinks) {
    const auto ExpectLinks = [&](const char* Pixel, const char* Vertex, const char* Macro, const char* Skinning) {
        Use(Pixel, Vertex, Macro, Skinning);
        GLint Linked = 0;
        glGetProgramiv(Id, GL_LINK_STATUS, &Linked);
        EXPECT_EQ(Linked, GL_TRUE) << Pixel << (Macro ? Macro : "");
    };
    for (const char* Name : {"GUI", "Sprite", "ParticleSprite", "FSQuad", "ColorOnly", "Sky", "RenderShadow"}) {
        ExpectLinks(Name, Name, nullptr, nullptr);
    }
    for (const char* Light : {LIGHT_AMBDIR, LIGHT_SPOT}) {
        for (const char* Name : {"Terrain", "Mesh", "Foliage"}) {
            ExpectLinks(Name, Name, Light, nullptr);
        }
        ExpectLinks("Mesh", "Mesh", Light, "SKINNING");
    }
    ExpectLinks("PostProcess", "FSQuad", nullptr, nullptr);
    ExpectLinks("RenderShadow", "RenderShadow", nullptr, "SKINNING");
    EXPECT_GE(glGetAttribLocation(Id, "Indices"), 0) << "skinning takes bones";
}

TEST_F(Shaders, SnowInShadeIsDarkerAndBlueAndFogClosesAtItsDistance) {
    const SRgb Lit = DrawGround(50, 255), Shade = DrawGround(50, 0);
    EXPECT_GT(Lit.R, 200);
    EXPECT_LT(Shade.R, Lit.R * 2 / 3);
    EXPECT_GT(Shade.B - Shade.R, 40);
    EXPECT_GT(Shade.B - Shade.R, Lit.B - Lit.R + 20);
    EXPECT_LT(DrawGround(50, 0, 0.1f).B, Shade.B / 2) << "dark air gives little light";
    const SRgb Dim = DrawGround(50, 255, 1, 0.6f);
    EXPECT_TRUE(Dim.R < Lit.R - 15 && Dim.R > Shade.R) << Dim << "clouds take some of the sun";
    EXPECT_EQ(DrawGround(50, 0, 1, 0.6f), Shade) << "and nothing of the shade";
    const SRgb Far = DrawGround(1000, 0);
    EXPECT_TRUE(std::abs(Far.R - 64) <= 2 && std::abs(Far.G - 128) <= 2 && std::abs(Far.B - 191) <= 2) << Far;
    EXPECT_GT(std::abs(DrawGround(10, 0).B - Far.B), 10);
    EXPECT_GT(std::abs(DrawGround(500, 0).B - Far.B), 5);
}

TEST_F(Shaders, AMeshShinesByWhatItsAlphaLacksTheMoreInTheDark) {
    Depth = 50;
    const auto Gain = [&](float Air) { return DrawMesh("Mesh", 100, 150, Air).R - DrawMesh("Mesh", 100, 255, Air).R; };
    EXPECT_GT(Gain(0.8f), 5);
    EXPECT_GT(Gain(0.1f), 100);
    EXPECT_EQ(DrawMesh("Mesh", 100, 120, 0.1f), (SRgb{0, 0, 0})) << "below a half it is a hole";
}

// Between the eye and the rider, boughs sooner than trunks, what is dark sooner than what is light.
TEST_F(Shaders, WhatStandsBeforeTheEyeGivesWay) {
    const auto Drawn = [&](const char* Name, float Distance, UINT8 Green) {
        Depth = Distance;
        return DrawMesh(Name, Green, 255, 0.8f).G > 5;
    };
    EXPECT_TRUE(Drawn("Foliage", 30, 30));
    EXPECT_FALSE(Drawn("Foliage", 26, 30));
    EXPECT_TRUE(Drawn("Foliage", 26, 200));
    EXPECT_FALSE(Drawn("Foliage", 18, 200));
    EXPECT_TRUE(Drawn("Mesh", 20, 30));
    EXPECT_FALSE(Drawn("Mesh", 15, 30));
    EXPECT_TRUE(Drawn("Mesh", 15, 200));
    EXPECT_FALSE(Drawn("Mesh", 8, 200));
}

// Seen from the light's side a face counts only if it looks away.
TEST_F(Shaders, LeavesCastShadowsThroughTheirAlphaAndTheGroundAlwaysWithFacesTurnedAway) {
    Use("RenderShadow", "RenderShadow");
    SetTexel(0, "Texture", {255, 255, 255, 255});
    glEnable(GL_CULL_FACE);
    glFrontFace(GL_CW);
    EXPECT_LE(Draw(2).R, 128);
    glFrontFace(GL_CCW);
    EXPECT_GT(Draw(2).R, 128);
    glDisable(GL_CULL_FACE);
    SetTexel(0, "Texture", {255, 255, 255, 0});
    EXPECT_LE(Draw(2).R, 128);
    EXPECT_GT(Draw(1600).R, 128);
    SetTexel(0, "Texture", {255, 255, 255, 255});
    EXPECT_GT(Draw(2).R, 128);
}

TEST_F(Shaders, TheSkyThickensToFogTowardsTheHorizon) {
    Use("Sky", "Sky");
    SetTexel(0, "SkyTex", {0, 0, 255, 255});
    Set("FogColor", {1, 0, 0});
    Set("FogData", {0, 4});
    EXPECT_EQ(Draw(1), (SRgb{0, 0, 255}));
    Set("FogData", {0.5f, 4});
    EXPECT_NEAR(Draw(1).R, 128, 2);
    EXPECT_LT(Draw(1, 0.9f).R, 10) << "higher up it is thin";
}

} // namespace
