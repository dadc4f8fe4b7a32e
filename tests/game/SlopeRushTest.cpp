// The game as the shell drives it.
#include "game/SlopeRush.h"
#include "world/LevelFixture.h"

namespace {

using Game = LevelFixture;

SRgb PixelAt(int X, int Y) {
    GGame->Render(1.0f);
    UINT8 Pixel[3];
    glReadPixels(X, Y, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, Pixel);
    return {Pixel[0], Pixel[1], Pixel[2]};
}

TEST_F(Game, RunsItsLevelAndShowsItUnderTheOverlayOfOneStep) {
    ASSERT_EQ(CreateGame(), 1u);
    for (int Round = 0; Round < 2; ++Round) {
        EXPECT_EQ(GLevel, nullptr);
        GGame->Init();
        GCamera.Eye = {1e6f, 0, 0};
        GGame->Update(0, STEP);
        EXPECT_LT(M_Length(GCamera.Eye), 1e5f) << "the level's camera has taken over";
        const SRgb Plain = PixelAt(50, 50);
        EXPECT_FALSE(Plain == PixelAt(50, WINDOW_HEIGHT - 20)) << "ground and sky";
        GLevel->OverlayRT.Bind();
        ClearWindow(0, 1, 0);
        GLevel->OverlayRT.Unbind();
        EXPECT_EQ(PixelAt(50, 50), (SRgb{0, 255, 0}));
        GGame->Update(0, STEP);
        EXPECT_EQ(PixelAt(50, 50), Plain);
        GGame->Free();
    }
    delete GGame;
    GGame = nullptr;
}

} // namespace
