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

// Mountains, clouds and sun of a sky that leans, from an eye that does not.
TEST_F(LevelPicture, ALeaningSkyLooksAsItWasKeptAndAnUprightOneDoesNotPass) {
    LoadText("WLMF\nscene sky=Data/Textures/Sky/Morning.png lda=3.5 ldp=1.17 grava=2.6 gravp=2.8\n");
    const Vec3 Direction = GLevel->SunDirection() + Vec3{0.1f, 0.1f, -0.1f};
    EXPECT_TRUE(MatchesGolden(DrawnFrom({}, Direction), "sky-turned", GATE));
    const SGoldenPlace Aside = {DefaultGoldenPlace().Goldens, "failures"};
    GLevel->Params.Gravity_Pitch = PI;
    EXPECT_FALSE(MatchesGolden(DrawnFrom({}, Direction), "sky-turned", GATE, Aside));
    GLevel->Params.Gravity_Pitch = 2 * PI - 2.8f;
    EXPECT_FALSE(MatchesGolden(DrawnFrom({}, Direction), "sky-turned", GATE, Aside)) << "leaning the other way";
}

TEST_F(LevelPicture, PhysicsLinesShowOnRequestAndLeaveNoStateBehind) {
    LoadText("WLMF\n" + FlatGround(51));
    const SPicture Plain = DrawnFrom({0, 0, 100}, {1, 0, -0.3f});
    GPhyShowDebug = 1;
    EXPECT_GT(MeanDifference(Plain, Drawn()), GATE);
    GPhyShowDebug = 0;
    EXPECT_EQ(MeanDifference(Plain, Drawn()), 0);
}

} // namespace
