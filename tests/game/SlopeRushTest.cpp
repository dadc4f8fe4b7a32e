// The game as the shell drives it.
#include "game/SlopeRush.h"
#include "terrain/Terrain.h"
#include "world/LevelFixture.h"

#include <GL/glew.h>

namespace {

class Game : public LevelFixture {
protected:
    void SetUp() override {
        LevelFixture::SetUp();
        if (GPhyWorld) {
            ASSERT_EQ(CreateGame(), 1u);
        }
    }
    void TearDown() override {
        delete GGame;
        GGame = nullptr;
        LevelFixture::TearDown();
    }

    static SPicture Drawn() {
        GGame->Render(1.0f);
        return ReadWindow();
    }

    // A green square in the middle of the overlay.
    static void PaintOverlay() {
        GLevel->OverlayRT.Bind();
        glEnable(GL_SCISSOR_TEST);
        glScissor(WINDOW_CENTRE_X - 50, WINDOW_CENTRE_Y - 50, 100, 100);
        glClearColor(0, 1, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
        GLevel->OverlayRT.Unbind();
    }
};

TEST_F(Game, IsCreatedWithoutALevel) {
    EXPECT_STREQ(GameName, "SlopeRush");
    EXPECT_NE(GGame, nullptr);
    EXPECT_EQ(GLevel, nullptr);
}

TEST_F(Game, LevelLivesFromInitToFree) {
    GGame->Init();
    ASSERT_NE(GLevel, nullptr);
    EXPECT_NE(GLevel->Terrain->Body, nullptr);
    GGame->Free();
    EXPECT_EQ(GLevel, nullptr);
    EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
    GGame->Init();
    GGame->Free();
}

TEST_F(Game, UpdateRunsTheLevel) {
    GGame->Init();
    GCamera.Eye = {1e6f, 0, 0};
    GGame->Update(0, STEP);
    EXPECT_LT(M_Length(GCamera.Eye), 1e5f) << "the level's camera has taken over";
    GGame->Free();
}

TEST_F(Game, OverlayLiesOverThePictureForOneStep) {
    GGame->Init();
    GGame->Update(0, STEP);
    const SPicture Plain = Drawn();
    PaintOverlay();
    const SPicture Painted = Drawn();
    EXPECT_EQ(Painted.At(WINDOW_CENTRE_X, WINDOW_CENTRE_Y), (SRgb{0, 255, 0}));
    EXPECT_EQ(Painted.At(WINDOW_CENTRE_X - 60, WINDOW_CENTRE_Y), Plain.At(WINDOW_CENTRE_X - 60, WINDOW_CENTRE_Y));
    GGame->Update(0, STEP);
    EXPECT_EQ(Drawn().At(WINDOW_CENTRE_X, WINDOW_CENTRE_Y), Plain.At(WINDOW_CENTRE_X, WINDOW_CENTRE_Y));
    GGame->Free();
}

TEST_F(Game, PictureIsNotEmpty) {
    GGame->Init();
    GGame->Update(0, STEP);
    ClearWindow(1, 0, 1);
    const SPicture Picture = Drawn();
    EXPECT_FALSE(Picture.At(WINDOW_CENTRE_X, 20) == Picture.At(WINDOW_CENTRE_X, WINDOW_HEIGHT - 20));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    GGame->Free();
}

} // namespace
