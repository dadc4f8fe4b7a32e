// What a level looks like: a whole picture against one that was looked at, and single properties of ground and sky.
#include "support/GoldenPicture.h"
#include "terrain/Terrain.h"
#include "world/LevelFixture.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>

namespace {

// Mean difference of a channel, 0 to 255, that two builds of the software renderer stay below.
constexpr double GATE = 1.0;

double MeanDifference(const SPicture& A, const SPicture& B) {
    double Sum = 0;
    for (std::size_t i = 0; i < A.Rgb.size(); ++i) {
        Sum += std::abs(A.Rgb[i] - B.Rgb[i]);
    }
    return Sum / static_cast<double>(A.Rgb.size());
}

class LevelPicture : public LevelFixture {
protected:
    static SPicture Drawn() {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        GLevel->Render(1.0f);
        return Shrunk(ReadWindow());
    }

    static SPicture DrawnFrom(const Vec3& Eye, const Vec3& Direction, const Vec3& Up = {0, 0, 1}) {
        GCamera = CameraState();
        GCamera.Eye = Eye;
        GCamera.Target = Eye + Direction;
        GCamera.Up = Up;
        return Drawn();
    }

    // Over the ground of the grid point at these fractions of the terrain.
    static Vec3 Over(float FractionX, float FractionY, float Height) {
        const STerrain& Ground = *GLevel->Terrain;
        const Vec3 Point = Ground.GetPoint(static_cast<UINT32>(FractionX * static_cast<float>(Ground.Width - 1)),
                                           static_cast<UINT32>(FractionY * static_cast<float>(Ground.Height - 1)));
        return Point + Vec3{0, 0, Height};
    }

    // Down the slope from near its upper end, as the game's camera looks.
    static SPicture FirstLevel(float FogFactor = 1) {
        LoadLevel("Data/Levels/Level1.wlm");
        GLevel->Params.FogDist *= FogFactor;
        const Vec3 Eye = Over(0.5f, 0.9f, 40);
        return DrawnFrom(Eye, Over(0.5f, 0.8f, 10) - Eye);
    }
};

TEST_F(LevelPicture, FirstLevelLooksAsItWasKept) {
    EXPECT_TRUE(MatchesGolden(FirstLevel(), "level1", GATE));
}

TEST_F(LevelPicture, OtherFogDoesNotPass) {
    SGoldenPlace Place = DefaultGoldenPlace();
    Place.Renew = false;
    Place.Failures = "failures";
    ASSERT_GT(ReadPng(Place.Goldens + "/level1.png").Width, 0) << "nothing to differ from";
    EXPECT_FALSE(MatchesGolden(FirstLevel(0.5f), "level1", GATE, Place));
}

TEST_F(LevelPicture, SkyAndSunAreSeenByDirectionAndTurnWithGravity) {
    LoadText("WLMF\nscene sky=Data/Textures/Sky/Morning.png lda=0.1 ldp=1.3\n");
    const Vec3 Direction = {1, 0.2f, 0.3f};
    const SPicture Level = DrawnFrom({}, Direction);
    GLevel->Params.Gravity_Angle = 1.5f;
    GLevel->Params.Gravity_Pitch = 2.6f;
    Vec3 Turned;
    Vec3 Up;
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

TEST_F(LevelPicture, PhysicsLinesShowOnRequest) {
    LoadText("WLMF\n" + FlatGround(51));
    const SPicture Plain = DrawnFrom({0, 0, 100}, {1, 0, -0.3f});
    GPhyShowDebug = 1;
    const SPicture Lined = DrawnFrom({0, 0, 100}, {1, 0, -0.3f});
    GPhyShowDebug = 0;
    EXPECT_GT(MeanDifference(Plain, Lined), GATE);
    EXPECT_EQ(MeanDifference(Plain, DrawnFrom({0, 0, 100}, {1, 0, -0.3f})), 0) << "the lines leave no state behind";
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

struct SCover {
    int Ground = 0; // pixels
    int Holes = 0;  // pixels of ground above one that is none
};

// With a level view each column of the picture is an upright plane through the eye. In it a ray above one that misses
// all ground misses all ground too, so that ground above a gap means that the ground has a hole.
SCover Count(const SPicture& Picture) {
    SCover Cover;
    for (int X = 0; X < Picture.Width; ++X) {
        bool Open = false;
        for (int Y = Picture.Height - 1; Y >= 0; --Y) {
            const bool IsGround = Picture.At(X, Y).G > 128;
            Cover.Ground += IsGround;
            Cover.Holes += IsGround && Open;
            Open |= !IsGround;
        }
    }
    return Cover;
}

class GroundCover : public LevelPicture {
protected:
    // Adds LodStep to the level of every second column of leaves; from 2 on no list mates with that. Leaves in the far
    // corners of the view, which have no triangles, are drawn as the coarsest: their border lies deep in the fog.
    static SCover CoverFrom(const Vec3& Eye, float Heading, UINT32 LodStep) {
        constexpr float RADIANS = 3.14159265f / 180;
        constexpr UINT32 COARSEST = 4;
        GCamera = CameraState();
        GCamera.Eye = Eye;
        GCamera.Target = Eye + Vec3{std::cos(Heading), std::sin(Heading), 0};
        M_CameraLookAt(GViewMatrix);
        M_Mat4Perspective(GProjectionMatrix, GCamera.Fov * RADIANS, GCamera.Aspect, GCamera.Near, GCamera.Far);
        ClearWindow(1, 0, 1);
        STerrain& Ground = *GLevel->Terrain;
        if (Ground.Visible(false)) {
            for (UINT32 i = 0; i < Ground.LeafColumns() * Ground.LeafRows(); ++i) {
                Ground.Leaves[i].SetLod(std::min(COARSEST, Ground.Leaves[i].Lod() + i % 2 * LodStep));
            }
            DrawPlainLeaves(Ground);
        }
        return Count(ReadWindow());
    }

    static SCover CoverFromAllPoses(UINT32 LodStep) {
        SCover Sum;
        for (const float X : {0.3f, 0.5f, 0.72f}) {
            for (const float Y : {0.15f, 0.4f, 0.65f, 0.9f}) {
                for (int Eighth = 0; Eighth < 8; ++Eighth) {
                    const SCover One = CoverFrom(Over(X, Y, 12), static_cast<float>(Eighth) * 0.7853982f, LodStep);
                    Sum.Ground += One.Ground;
                    Sum.Holes += One.Holes;
                }
            }
        }
        return Sum;
    }
};

TEST_F(GroundCover, NoGapBetweenNeighbouringLeaves) {
    LoadLevel("Data/Levels/Level1.wlm");
    const SCover Cover = CoverFromAllPoses(0);
    EXPECT_EQ(Cover.Holes, 0);
    EXPECT_GT(Cover.Ground, 96 * WINDOW_WIDTH * WINDOW_HEIGHT / 4) << "poses that see too little ground prove nothing";
}

TEST_F(GroundCover, GapsWouldBeSeen) {
    LoadLevel("Data/Levels/Level1.wlm");
    EXPECT_GT(CoverFromAllPoses(2).Holes, 0);
}

} // namespace
