// What a level looks like: a whole picture against one that was looked at, and single properties of ground and sky.
#include "terrain/Terrain.h"
#include "world/LevelFixture.h"

namespace {

// Mean difference of a channel, 0 to 255, that two builds of the software renderer stay below.
constexpr double GATE = 1.0;

class LevelPicture : public LevelFixture {
protected:
    static SPicture DrawnFrom(const Vec3& Eye, const Vec3& Direction, const Vec3& Up = {0, 0, 1}) {
        LookFrom(Eye, Eye + Direction, Up);
        return Drawn();
    }

    // Over the ground of the grid point at these fractions of the terrain.
    static Vec3 Over(float FractionX, float FractionY, float Height) {
        const STerrain& Ground = *GLevel->Terrain;
        const Vec3 Point = Ground.GetPoint(static_cast<UINT32>(FractionX * static_cast<float>(Ground.Width - 1)),
                                           static_cast<UINT32>(FractionY * static_cast<float>(Ground.Height - 1)));
        return Point + Vec3{0, 0, Height};
    }
};

// Down the slope from near its upper end, as the game's camera looks.
TEST_F(LevelPicture, FirstLevelLooksAsItWasKeptAndOtherFogDoesNotPass) {
    LoadLevel("Data/Levels/Level1.wlm");
    const Vec3 Eye = Over(0.5f, 0.9f, 40), Direction = Over(0.5f, 0.8f, 10) - Eye;
    EXPECT_TRUE(MatchesGolden(DrawnFrom(Eye, Direction), "level1", GATE));
    GLevel->Params.FogDist *= 0.5f;
    EXPECT_FALSE(MatchesGolden(DrawnFrom(Eye, Direction), "level1", GATE, {DefaultGoldenPlace().Goldens, "failures"}));
}

TEST_F(LevelPicture, SkyAndSunAreSeenByDirectionAndTurnWithGravity) {
    LoadText("WLMF\nscene sky=Data/Textures/Sky/Morning.png lda=0.1 ldp=1.3\n");
    const Vec3 Direction = {1, 0.2f, 0.3f};
    const SPicture Level = DrawnFrom({}, Direction);
    GLevel->Params.Gravity_Angle = 1.5f;
    GLevel->Params.Gravity_Pitch = 2.6f;
    Vec3 Turned, Up;
    M_QuatRotate(GLevel->GravityRotation(), Direction, Turned);
    M_QuatRotate(GLevel->GravityRotation(), {0, 0, 1}, Up);
    EXPECT_LT(MeanDifference(Level, DrawnFrom({1024, -512, 256}, Turned, Up)), 0.2);
    EXPECT_GT(MeanDifference(Level, DrawnFrom({}, Direction)), GATE);
    GLevel->Params.LightColor_R = 0;
    const SRgb Lit = Level.At(Level.Width / 2, Level.Height / 2);
    const SRgb Dark = DrawnFrom({}, Turned, Up).At(Level.Width / 2, Level.Height / 2);
    EXPECT_GT(Lit.R, Dark.R) << "the sun's red";
    EXPECT_NEAR(Lit.B, Dark.B, 1);
}

TEST_F(LevelPicture, PhysicsLinesShowOnRequestAndLeaveNoStateBehind) {
    LoadText("WLMF\n" + FlatGround(51));
    const SPicture Plain = DrawnFrom({0, 0, 100}, {1, 0, -0.3f});
    GPhyShowDebug = 1;
    EXPECT_GT(MeanDifference(Plain, Drawn()), GATE);
    GPhyShowDebug = 0;
    EXPECT_EQ(MeanDifference(Plain, Drawn()), 0);
}

// The ground in green before magenta, with the levels of detail that the last query chose.
void DrawPlainLeaves(STerrain& Ground) {
    glUseProgram(0);
    Ground.Bind(true, false);
    Mat4 ModelView;
    M_Mat4Mul(ModelView, GViewMatrix, GWorldMatrix);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(GProjectionMatrix.M);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(ModelView.M);
    glColor3f(0, 1, 0);
    Ground.DrawLeaves();
    Ground.Unbind();
}

class GroundCover : public LevelPicture {
protected:
    int Ground = 0; // pixels
    int Holes = 0;  // pixels of ground above one that is none

    // With a level view each column of the picture is an upright plane through the eye. In it a ray above one that
    // misses all ground misses all ground too, so that ground above a gap means that the ground has a hole.
    void Count(const SPicture& Picture) {
        for (int X = 0; X < Picture.Width; ++X) {
            bool Open = false;
            for (int Y = Picture.Height - 1; Y >= 0; --Y) {
                const bool IsGround = Picture.At(X, Y).G > 128;
                Ground += IsGround;
                Holes += IsGround && Open;
                Open |= !IsGround;
            }
        }
    }

    // Adds LodStep to the level of every second column of leaves; from 2 on no list mates with that. Leaves in the far
    // corners of the view, which have no triangles, are drawn as the coarsest: their border lies deep in the fog.
    void CountFrom(const Vec3& Eye, float Heading, UINT32 LodStep) {
        constexpr UINT32 COARSEST = 4;
        LookFrom(Eye, Eye + Vec3{std::cos(Heading), std::sin(Heading), 0});
        M_CameraLookAt(GViewMatrix);
        M_CameraPerspective(GProjectionMatrix);
        ClearWindow(1, 0, 1);
        STerrain& Terrain = *GLevel->Terrain;
        if (Terrain.Visible(false)) {
            for (UINT32 i = 0; i < Terrain.LeafColumns() * Terrain.LeafRows(); ++i) {
                Terrain.Leaves[i].SetLod(std::min(COARSEST, Terrain.Leaves[i].Lod() + i % 2 * LodStep));
            }
            DrawPlainLeaves(Terrain);
        }
        Count(ReadWindow());
    }
};

TEST_F(GroundCover, NeighbouringLeavesHaveNoGapWhereOtherLevelsWould) {
    LoadLevel("Data/Levels/Level1.wlm");
    for (const UINT32 LodStep : {0, 2}) {
        Ground = Holes = 0;
        for (int Pose = 0; Pose < 96; ++Pose) {
            const Vec3 Eye =
                Over(std::array{0.3f, 0.5f, 0.72f}[Pose % 3], 0.15f + 0.25f * static_cast<float>(Pose / 3 % 4), 12);
            CountFrom(Eye, static_cast<float>(Pose / 12) * 0.7853982f, LodStep);
        }
        EXPECT_EQ(Holes > 0, LodStep > 0) << Holes;
        EXPECT_GT(Ground, 96 * WINDOW_WIDTH * WINDOW_HEIGHT / 4) << "poses that see too little ground prove nothing";
    }
}

} // namespace
