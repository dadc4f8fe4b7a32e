#include "graphics/RenderTarget.h"

#include <GL/glew.h>

#include "support/GlFixture.h"

namespace {

class RenderTargetTest : public GlFixture {
protected:
    static void CreateColor(GameRT& Target, INT32 Width = 64, INT32 Height = 32) {
        Target.Create(Width, Height, false, false, DEPTH_FORMAT_BYTE, true, false);
    }
    static void CreateShadow(GameRT& Target, INT32 Size = 64) {
        Target.Create(Size, Size, true, true, DEPTH_FORMAT_FLOAT, false, false);
    }

    static void ExpectDrawingInto(UINT32 FBO, INT32 Width, INT32 Height) {
        INT32 Bound = -1;
        INT32 Viewport[4] = {};
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &Bound);
        glGetIntegerv(GL_VIEWPORT, Viewport);
        EXPECT_EQ(Bound, static_cast<INT32>(FBO));
        EXPECT_EQ(std::vector<INT32>(Viewport, Viewport + 4), (std::vector<INT32>{0, 0, Width, Height}));
    }
    static void ExpectWindow() { ExpectDrawingInto(0, 1024, 576); }

    static INT32 Parameter(UINT32 Texture, GLenum Name) {
        INT32 Value = 0;
        glBindTexture(GL_TEXTURE_2D, Texture);
        glGetTexParameteriv(GL_TEXTURE_2D, Name, &Value);
        glBindTexture(GL_TEXTURE_2D, 0);
        return Value;
    }

    static INT32 DrawBuffer() {
        INT32 Buffer = -1;
        glGetIntegerv(GL_DRAW_BUFFER, &Buffer);
        return Buffer;
    }
};

TEST_F(RenderTargetTest, DrawingIntoATargetLeavesTheWindowAlone) {
    ClearWindow(0.0f, 0.0f, 1.0f);
    GameRT Target;
    CreateColor(Target);
    Target.Bind();
    glClearColor(1.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(ReadPicture(64, 32).At(63, 31), (SRgb{255, 0, 0}));
    Target.Unbind();
    EXPECT_EQ(ReadWindow().At(10, 10), (SRgb{0, 0, 255}));
    EXPECT_EQ(ReadTexture(Target.ColorTex, 64, 32)[0], 255);
}

TEST_F(RenderTargetTest, ColorOnlyHasNoDepth) {
    GameRT Target;
    CreateColor(Target);
    EXPECT_TRUE(glIsTexture(Target.ColorTex));
    EXPECT_EQ(Target.DepthTex, 0u);
    EXPECT_EQ(Target.DepthRB, 0u);
    EXPECT_EQ(Parameter(Target.ColorTex, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(Parameter(Target.ColorTex, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    ExpectWindow();
}

TEST_F(RenderTargetTest, MipsGiveTheColorAMipmapFilter) {
    GameRT Target;
    Target.Create(64, 32, true, true, DEPTH_FORMAT_BYTE, true, true);
    EXPECT_EQ(Parameter(Target.ColorTex, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_TRUE(glIsTexture(Target.DepthTex));
}

TEST_F(RenderTargetTest, ADepthTextureIsReadAsItIs) {
    GameRT Target;
    CreateShadow(Target);
    EXPECT_EQ(Target.ColorTex, 0u);
    EXPECT_EQ(Parameter(Target.DepthTex, GL_TEXTURE_MAG_FILTER), GL_NEAREST);
    EXPECT_EQ(Parameter(Target.DepthTex, GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    EXPECT_EQ(Parameter(Target.DepthTex, GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(Parameter(Target.DepthTex, GL_TEXTURE_COMPARE_MODE), GL_NONE);
    Target.Bind();
    glClearDepth(0.25);
    glClear(GL_DEPTH_BUFFER_BIT);
    float Depth = 0.0f;
    glReadPixels(5, 5, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &Depth);
    EXPECT_NEAR(Depth, 0.25f, 1e-6f) << "24 bits";
    Target.Unbind();
}

TEST_F(RenderTargetTest, DepthWithoutTextureIsARenderbuffer) {
    GameRT Target;
    Target.Create(64, 32, true, false, DEPTH_FORMAT_BYTE, true, false);
    EXPECT_EQ(Target.DepthTex, 0u);
    EXPECT_TRUE(glIsRenderbuffer(Target.DepthRB));
    const UINT32 Renderbuffer = Target.DepthRB;
    Target.Free();
    EXPECT_FALSE(glIsRenderbuffer(Renderbuffer));
}

TEST_F(RenderTargetTest, TheWindowCanBeDrawnIntoAfterADepthOnlyTarget) {
    GameRT Target;
    CreateShadow(Target);
    EXPECT_EQ(DrawBuffer(), GL_BACK);
    Target.Bind();
    EXPECT_EQ(DrawBuffer(), GL_NONE);
    Target.Unbind();
    ClearWindow(0.0f, 1.0f, 0.0f);
    EXPECT_EQ(ReadWindow().At(500, 300), (SRgb{0, 255, 0}));
}

TEST_F(RenderTargetTest, UnbindReturnsToTheTargetBeneathAndThenToTheWindow) {
    GameRT Scene;
    GameRT Shadow;
    CreateColor(Scene);
    CreateShadow(Shadow, 128);
    Scene.Bind();
    ExpectDrawingInto(Scene.FBO, 64, 32);
    Shadow.Bind();
    ExpectDrawingInto(Shadow.FBO, 128, 128);
    EXPECT_EQ(GLastFBOs.Top(), &Shadow);
    Shadow.Unbind();
    ExpectDrawingInto(Scene.FBO, 64, 32);
    Scene.Unbind();
    ExpectWindow();
}

TEST_F(RenderTargetTest, AnUncoveredDepthOnlyTargetStillDrawsNoColor) {
    GameRT Shadow;
    GameRT Other;
    CreateShadow(Shadow);
    CreateColor(Other);
    Shadow.Bind();
    Other.Bind();
    Other.Unbind();
    EXPECT_EQ(DrawBuffer(), GL_NONE);
    Shadow.Unbind();
}

TEST_F(RenderTargetTest, FreeOfTheTopTargetReturnsToTheOneBeneath) {
    GameRT Beneath;
    GameRT Top;
    CreateColor(Beneath);
    CreateColor(Top, 16, 16);
    Beneath.Bind();
    Top.Bind();
    Top.Free();
    ExpectDrawingInto(Beneath.FBO, 64, 32);
    Beneath.Free();
    ExpectWindow();
    EXPECT_TRUE(GLastFBOs.Empty());
}

TEST_F(RenderTargetTest, FreeOfACoveredTargetLeavesTheTopOne) {
    GameRT Beneath;
    GameRT Top;
    CreateColor(Beneath);
    CreateColor(Top, 16, 16);
    Beneath.Bind();
    Top.Bind();
    Beneath.Free();
    ExpectDrawingInto(Top.FBO, 16, 16);
    EXPECT_EQ(GLastFBOs.count, 1u);
    Top.Unbind();
    ExpectWindow();
}

TEST_F(RenderTargetTest, FreeDeletesEverythingAndIsHarmlessAfterwards) {
    GameRT Target;
    Target.Free();
    Target.Create(64, 32, true, true, DEPTH_FORMAT_BYTE, true, false);
    const UINT32 FBO = Target.FBO;
    const UINT32 Textures[] = {Target.ColorTex, Target.DepthTex};
    Target.Free();
    EXPECT_FALSE(glIsFramebuffer(FBO));
    EXPECT_FALSE(glIsTexture(Textures[0]));
    EXPECT_FALSE(glIsTexture(Textures[1]));
    EXPECT_EQ(Target.FBO + Target.ColorTex + Target.DepthTex + Target.DepthRB, 0u);
    EXPECT_EQ(Target.Width + Target.Height, 0);
    Target.Free();
}

TEST_F(RenderTargetTest, ATargetThatGoesOutOfScopeIsFreed) {
    UINT32 FBO = 0;
    {
        GameRT Target;
        CreateColor(Target);
        FBO = Target.FBO;
        Target.Bind();
    }
    EXPECT_FALSE(glIsFramebuffer(FBO));
    ExpectWindow();
}

TEST_F(RenderTargetTest, CreateOnATargetThatExistsReplacesIt) {
    GameRT Target;
    CreateColor(Target);
    const UINT32 First = Target.ColorTex;
    CreateShadow(Target);
    EXPECT_FALSE(glIsTexture(First));
    EXPECT_EQ(Target.ColorTex, 0u);
}

TEST_F(RenderTargetTest, NeitherColorNorDepthFailsTheAssertion) {
    GameRT Target;
    EXPECT_DEATH(Target.Create(64, 64, false, true, DEPTH_FORMAT_BYTE, false, false), "FB \\|\\| Depth.*GameRT");
}

TEST_F(RenderTargetTest, UnbindOutOfOrderFailsTheAssertion) {
    GameRT Lower;
    GameRT Upper;
    CreateColor(Lower);
    CreateColor(Upper);
    EXPECT_DEATH(Lower.Unbind(), "GLastFBOs.Top\\(\\) == this.*GameRT");
    EXPECT_DEATH((Lower.Bind(), Upper.Bind(), Lower.Unbind()), "GLastFBOs.Top\\(\\) == this.*GameRT");
}

TEST_F(RenderTargetTest, ARefusedTargetIsFatalWithItsParameters) {
    GameRT Target;
    // A texture without a size cannot be drawn into; 36054 is GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT.
    EXPECT_FATAL(Target.Create(0, 7, true, true, DEPTH_FORMAT_FLOAT, true, false), "Requested frame buffer");
    EXPECT_EQ(ReadText("error.log"),
              "Requested frame buffer is not supported, game will not run on your PC.\n\n\t\t\t\t\t If the game might "
              "have failed instead, here's the GL FBO status code: 36054\n\t\t\t\t\t If you think you can convince the "
              "developer to change the code for you, here's the buffer request data:\t\t\t\t\t Width: 0, Height: 7, "
              "Format: 1, DepthRequired: 1, DepthAsTexture: 1, DepthFormat: 12, ColorRequired: 1, Mips: 0");
}

} // namespace
