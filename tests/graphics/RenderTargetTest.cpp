#include "graphics/RenderTarget.h"

#include "support/GlFixture.h"

#include <GL/glew.h>

namespace {

class RenderTargetTest : public GlFixture {
protected:
    // Null is the window.
    static void ExpectDrawingInto(const GameRT* Target) {
        INT32 Viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, Viewport);
        EXPECT_EQ(Viewport[2], Target ? Target->Width : 1024);
        EXPECT_EQ(Viewport[3], Target ? Target->Height : 576);
        EXPECT_EQ(GetInteger(GL_FRAMEBUFFER_BINDING), static_cast<INT32>(Target ? Target->FBO : 0));
        EXPECT_EQ(GetInteger(GL_DRAW_BUFFER), !Target ? GL_BACK : Target->ColorTex ? GL_COLOR_ATTACHMENT0 : GL_NONE);
    }
};

TEST_F(RenderTargetTest, EachKindHasItsBuffersUntilItIsFreed) {
    for (int Kind = 0; Kind < 16; Kind++) {
        const bool Depth = Kind & 1, AsTexture = Kind & 2, Color = Kind & 4, Mips = Kind & 8;
        if (!Depth && !Color) {
            continue;
        }
        SCOPED_TRACE(Kind);
        GameRT T;
        T.Create(8, 8, true, Kind % 3, DEPTH_FORMAT_FLOAT, true, false); // replaced by the next
        T.Create(64, 32, Depth, AsTexture, Mips ? DEPTH_FORMAT_BYTE : DEPTH_FORMAT_FLOAT, Color, Mips);
        ExpectDrawingInto(nullptr);
        const UINT32 FBO = T.FBO, ColorTex = T.ColorTex, DepthTex = T.DepthTex, DepthRB = T.DepthRB;
        EXPECT_EQ(glIsTexture(ColorTex), Color);
        EXPECT_EQ(glIsTexture(DepthTex), Depth && AsTexture);
        EXPECT_EQ(glIsRenderbuffer(DepthRB), Depth && !AsTexture);
        for (const UINT32 Texture : {ColorTex, DepthTex}) {
            if (Texture) {
                const INT32 Filter = Texture == DepthTex ? GL_NEAREST : Mips ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR;
                EXPECT_EQ(TextureParameter(Texture, GL_TEXTURE_MIN_FILTER), Filter);
                EXPECT_EQ(TextureParameter(Texture, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
                EXPECT_EQ(TextureParameter(Texture, GL_TEXTURE_COMPARE_MODE), GL_NONE);
                INT32 DepthBits = 0;
                glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_DEPTH_SIZE, &DepthBits);
                EXPECT_EQ(DepthBits, Texture == DepthTex ? 24 : 0);
            }
        }
        T.Free();
        EXPECT_FALSE(glIsFramebuffer(FBO) || glIsTexture(ColorTex) || glIsTexture(DepthTex) ||
                     glIsRenderbuffer(DepthRB));
        EXPECT_EQ(T.FBO + T.ColorTex + T.DepthTex + T.DepthRB + T.Width + T.Height, 0u);
    }
}

TEST_F(RenderTargetTest, AnyOrderOfBindUnbindAndFreeNests) {
    std::mt19937 Random(1);
    for (int Round = 0; Round < 40; Round++) {
        GameRT Targets[4];
        for (int i = 0; i < 4; i++) {
            Targets[i].Create(16 << i, 8 + i, true, true, DEPTH_FORMAT_FLOAT, i % 2 == 0, false);
        }
        std::vector<GameRT*> Bound; // the oracle
        for (int Step = 0; Step < 15; Step++) {
            GameRT& Target = Targets[Random() % 4];
            if (Random() % 5 == 0) {
                Target.Free();
                Bound.erase(std::remove(Bound.begin(), Bound.end(), &Target), Bound.end());
            } else if (Target.FBO && !std::count(Bound.begin(), Bound.end(), &Target)) {
                Target.Bind();
                Bound.push_back(&Target);
            } else if (!Bound.empty()) {
                Bound.back()->Unbind();
                Bound.pop_back();
            }
            ASSERT_EQ(GLastFBOs.count, Bound.size());
            ExpectDrawingInto(Bound.empty() ? nullptr : Bound.back());
        }
    }
    EXPECT_TRUE(GLastFBOs.Empty()) << "a target that goes out of scope is freed";
}

TEST_F(RenderTargetTest, WrongUseFailsTheAssertion) {
    GameRT Lower, Upper;
    EXPECT_DEATH(Lower.Create(8, 8, false, true, DEPTH_FORMAT_BYTE, false, false), "FB \\|\\| Depth.*GameRT");
    EXPECT_DEATH(Lower.Unbind(), "GLastFBOs.Top\\(\\) == this.*GameRT");
    EXPECT_DEATH((Lower.Bind(), Upper.Bind(), Lower.Unbind()), "GLastFBOs.Top\\(\\) == this.*GameRT");
}

TEST_F(RenderTargetTest, ARefusedTargetIsFatalWithItsParameters) {
    // A texture without a size cannot be drawn into; 36054 is GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT.
    EXPECT_FATAL(GameRT().Create(0, 7, true, true, DEPTH_FORMAT_FLOAT, true, false), "Requested frame buffer");
    EXPECT_EQ(ReadText("error.log"),
              "Requested frame buffer is not supported, game will not run on your PC.\n\n\t\t\t\t\t If the game might "
              "have failed instead, here's the GL FBO status code: 36054\n\t\t\t\t\t If you think you can convince the "
              "developer to change the code for you, here's the buffer request data:\t\t\t\t\t Width: 0, Height: 7, "
              "Format: 1, DepthRequired: 1, DepthAsTexture: 1, DepthFormat: 12, ColorRequired: 1, Mips: 0");
}

} // namespace
