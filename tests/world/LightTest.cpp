// Where shadows and cones of light end, what several lights add up to, what hides the sun and what the fog leaves.
#include "world/LightStage.h"

namespace {

using Lighting = LightStage;

::testing::AssertionResult LooksAsKept(const SPicture& Picture, const char* Name) {
    return MatchesGolden(Shrunk(Picture), Name, 0.7);
}

// What a picture has beyond another, channel by channel; a channel that has less counts as 255.
SPicture Added(const SPicture& Base, const SPicture& Picture) {
    SPicture Out = Picture;
    for (std::size_t i = 0; i < Out.Rgb.size(); ++i) {
        Out.Rgb[i] = static_cast<UINT8>(std::max(-1, Picture.Rgb[i] - Base.Rgb[i]));
    }
    return Out;
}

// The shadow of a box's top is as large as the top and lies where the light through its middle meets the ground.
TEST_F(Lighting, ABoxShadesTheGroundToItsEdgesWhereTheSunSaysAlsoUnderTiltedGravity) {
    constexpr float HEIGHT = 30, HALF = 10, EDGE = 2;
    SMeshClient& Box = Place({0, 0, GROUND + HEIGHT / 2}, {2 * HALF, 2 * HALF, HEIGHT});
    for (const auto& [Angle, Pitch, Tilt] : {std::array{0.5f, 0.8f, 0.0f}, {3.9f, 1.0f, 0.0f}, {2.0f, 0.6f, 0.3f}}) {
        GLevel->Params.LightDir_Angle = Angle;
        GLevel->Params.LightDir_Pitch = Pitch;
        GLevel->Params.Gravity_Pitch = 3.1415927f + Tilt;
        LookDown(150, 60);
        Box.RenderFlags = RENDER_HIDDEN;
        const SPicture Bare = Scene();
        Box.RenderFlags = 0;
        const SPicture Shaded = Scene();
        const Vec3 ToSun = GLevel->SunDirection();
        const auto Part = [&](float Beyond) {
            const float X = -ToSun.x * HEIGHT / ToSun.z - std::copysign(HALF + Beyond, ToSun.x);
            const float Y = -ToSun.y * HEIGHT / ToSun.z - std::copysign(HALF + Beyond, ToSun.y);
            return OnGround(Shaded, X, Y).G / static_cast<float>(OnGround(Bare, X, Y).G);
        };
        EXPECT_LT(Part(-EDGE), 0.7f) << Angle;
        EXPECT_GT(Part(EDGE), 0.97f) << Angle;
    }
    EXPECT_TRUE(LooksAsKept(Scene(), "light-shadow"));
}

// The places cross the edge of a shadow, which is some texels of the map wide.
TEST_F(Lighting, EdgesOfShadowsStandStillWhileTheEyeMovesByPartsOfATexel) {
    constexpr float HEIGHT = 30, HALF = 10;
    Place({0, 0, GROUND + HEIGHT / 2}, {2 * HALF, 2 * HALF, HEIGHT});
    const Vec3 ToSun = GLevel->SunDirection();
    const float Edge = -ToSun.x * HEIGHT / ToSun.z - std::copysign(HALF, ToSun.x);
    const float Middle = -ToSun.y * HEIGHT / ToSun.z;
    std::vector<float> First;
    float Moved = 0, Darkest = 255, Brightest = 0;
    for (int Step = 0; Step < 8; ++Step) {
        // With the sun behind it, where the snow does not shine.
        const Vec3 Way = Vec3{0.11f, -0.07f, 0} * static_cast<float>(Step);
        LookFrom(Vec3{Edge, Middle, GROUND} + ToSun * 20 + Way, Vec3{Edge, Middle, GROUND} + Way);
        GCamera.Fov = 20;
        const SPicture Picture = Scene();
        for (std::size_t i = 0; i < 30; ++i) {
            const float Bright = OnGround(Picture, Edge - 1.5f + 0.1f * static_cast<float>(i), Middle).G;
            First.resize(std::max(First.size(), i + 1), Bright);
            Moved = std::max(Moved, std::fabs(Bright - First[i]));
            Darkest = std::min(Darkest, Bright);
            Brightest = std::max(Brightest, Bright);
        }
    }
    EXPECT_GT(Brightest - Darkest, 40) << "the edge is in sight";
    EXPECT_LT(Moved, 0.15f * (Brightest - Darkest));
}

TEST_F(Lighting, ASpotLightEndsAtTheEdgeOfItsConeAndBehindWhatStandsInIt) {
    LookDown(200, 30);
    Place({0, 0, GROUND + 50}, {10, 10, 2});
    const SPicture Base = Scene();
    SLightClient& Light = Hang(0, 0, 100, 500, {1, 0, 0});
    const float Radius = 100 * std::tan(0.34906585f);
    const SPicture Lit = Scene(), Gain = Added(Base, Lit);
    EXPECT_NEAR(Light.BBox.Max.z + Light.BBox.Max.x, Light.Pos.z + 500 * std::sin(0.34906585f), 0.1f);
    for (float Turn = 0; Turn < 6.2f; Turn += 0.7f) {
        const float X = Radius * std::cos(Turn), Y = Radius * std::sin(Turn);
        EXPECT_GT(OnGround(Gain, X * 0.8f, Y * 0.8f).R, 6) << Turn;
        EXPECT_LE(OnGround(Gain, X * 1.03f, Y * 1.03f).R, 0) << Turn;
        EXPECT_EQ(M_BBoxDistance(Light.BBox, {X, Y, GROUND}), 0);
    }
    const SRgb Plate = At(Gain, {0, 0, GROUND + 51});
    EXPECT_TRUE(Plate.R > 20 && Plate.G + Plate.B == 0) << Plate << "light of one colour adds that one";
    EXPECT_TRUE(OnGround(Gain, 9, -9).R == 0 && OnGround(Gain, 11.6f, -11.6f).R > 20) << "the plate's shadow";
    EXPECT_TRUE(LooksAsKept(Lit, "light-cone"));

    const UINT32 Halves[] = {~0u, ~0u, 0xFF000000, 0xFF000000};
    Light.ProjTexture = TextureFromPixels(4, 1, Halves);
    const SPicture Half = Added(Base, Scene());
    EXPECT_TRUE(OnGround(Half, -25, 0).R <= 1 && OnGround(Half, 25, 0).R > 20) << "it throws a half dark picture";
    Light.PrevPos.x = 40;
    EXPECT_GT(OnGround(Added(Base, Scene(0.5f)), 20 + 0.8f * Radius, 0).R, 6) << "half way between two steps";
    Light.Flags = LIGHT_FLAG_OFF;
    EXPECT_EQ(MeanDifference(Base, Scene()), 0);
    glDeleteTextures(1, &Light.ProjTexture);
}

// Each reaches a thing that no other does, two of them skinned. Together they add what each adds alone.
TEST_F(Lighting, LightsOfDifferentReachAddUp) {
    LookDown(150, 50);
    Place({-60, 0, GROUND + 10}, {1, 1, 1}, "Data/Models/Rider.mdd");
    Place({0, 0, GROUND + 10}, {1, 1, 1}, "Data/Models/Rider.mdd");
    Place({60, 0, GROUND + 10}, {10, 10, 20});
    Hang(-60, 0, 60, 100, {0.3f, 0.1f, 0.1f});
    const UINT32 Shade = 0xFFC8C8C8;
    Hang(0, 0, 80, 220, {0.1f, 0.3f, 0.1f}).ProjTexture = TextureFromPixels(1, 1, &Shade);
    Hang(60, 0, 60, 160, {0.1f, 0.1f, 0.3f});
    const auto With = [&](int Lit) {
        for (int i = 0; i < 3; ++i) {
            Lamps[i].Flags = Lit >> i & 1 ? 0 : LIGHT_FLAG_OFF;
        }
        return Scene();
    };
    const SPicture Base = With(0), All = With(7);
    SPicture Sum = Base;
    for (int i = 0; i < 3; ++i) {
        const SPicture Gain = Added(Base, With(1 << i));
        const SRgb OnTop = At(Gain, {Lamps[i].Pos.x, Lamps[i].Pos.y, GROUND + 20});
        EXPECT_GT((&OnTop.R)[i], 5) << i;
        std::transform(Sum.Rgb.begin(), Sum.Rgb.end(), Gain.Rgb.begin(), Sum.Rgb.begin(), std::plus<UINT8>());
    }
    EXPECT_LT(MeanDifference(Sum, All), 0.05);
    EXPECT_TRUE(LooksAsKept(All, "light-three"));
    glDeleteTextures(1, &Lamps[1].ProjTexture);
}

TEST_F(Lighting, ATrunkHidesSunAndFlareExactlyWhereItStands) {
    const Vec3 Eye = {0, 0, GROUND + 20};
    const Vec3 ToSun = GLevel->SunDirection();
    const Vec3 Aside = M_Normalized(M_Cross(ToSun, {0, 0, 1}));
    Place(Eye + ToSun * 60, {4, 4, 60});
    GLevel->Params.LightColor_R = GLevel->Params.LightColor_G = 1;
    LookFrom(Eye, Eye + ToSun);
    const SPicture Whole = Scene();
    const UINT32 Pictures[] = {std::exchange(GLevel->SunTexture, 0), std::exchange(GLevel->FlareTexture, 0)};
    const SPicture Gain = Added(Scene(), Whole);
    GLevel->SunTexture = Pictures[0];
    GLevel->FlareTexture = Pictures[1];
    EXPECT_TRUE(LooksAsKept(Whole, "light-trunk"));
    for (const float Up : {-3.0f, 0.0f, 3.0f}) {
        const Vec3 Middle = Eye + ToSun * 60 + Vec3{0, 0, Up};
        EXPECT_EQ(At(Gain, Middle).R, 0);
        EXPECT_GT(At(Gain, Middle + Aside * 4).R, 8);
        EXPECT_GT(At(Gain, Middle - Aside * 4).R, 8);
    }
}

TEST_F(Lighting, FogTakesMoreWithDistanceAndAllWhereItClosesFromSunAndSpotLight) {
    constexpr float CLOSES = 180, FOG_RED = 230;
    LookFrom({-180, 0, GROUND + 20}, {0, 0, GROUND + 20});
    const Vec3 Walls[] = {{-140, 30, GROUND + 20}, {-80, 0, GROUND + 20}, {CLOSES - 179, -60, GROUND + 20}};
    for (const Vec3& Wall : Walls) {
        Place(Wall + Vec3{1, 0, 0}, {2, 20, 50});
        SLightClient& Light = Hang(Wall.x - 30, Wall.y, 20, 80, {1, 1, 1});
        Light.Dir = Light.PrevDir = {1, 0, 0};
    }
    const auto Look = [&](float Closes, UINT8 LightFlags) {
        GLevel->Params.FogDist = Closes;
        for (SLightClient& Light : Lamps) {
            Light.Flags = LightFlags;
        }
        return Scene();
    };
    const SPicture Clear = Look(1e6f, LIGHT_FLAG_OFF), Lit = Added(Clear, Look(1e6f, 0));
    const SPicture Fogged = Look(CLOSES, LIGHT_FLAG_OFF), FoggedLit = Look(CLOSES, 0);
    EXPECT_TRUE(LooksAsKept(FoggedLit, "light-fog"));
    float Last = 0;
    for (const Vec3& Wall : Walls) {
        const float Red = static_cast<float>(At(Clear, Wall).R);
        const float Taken = (static_cast<float>(At(Fogged, Wall).R) - Red) / (FOG_RED - Red);
        EXPECT_GT(Taken, Last + 0.05f) << Wall.x;
        EXPECT_GT(At(Lit, Wall).G, 20);
        EXPECT_NEAR(At(Added(Fogged, FoggedLit), Wall).G, (1 - Taken) * static_cast<float>(At(Lit, Wall).G), 4);
        Last = Taken;
    }
    EXPECT_GT(Last, 0.97f);
}

// A pole on the ground, seen from far. Meshes scale about their origin, here the pole's middle.
TEST_F(Lighting, AThingGrowsOutOfTheGroundWhereMeshesBeginToBeDrawnAndItsShadowWithIt) {
    constexpr float HALF = 20;
    const Vec3 Middle = {0, 0, GROUND + HALF + 0.5f};
    SMeshClient& Pole = Place(Middle, {6, 6, 2 * HALF});
    GLevel->Params.LightDir_Angle = 1.5707963f;
    GLevel->Params.LightDir_Pitch = 1.1f;
    const Vec3 ToSun = GLevel->SunDirection();
    // Whether the pole or its shadow is seen at a part of the pole's half height over its middle.
    const auto Seen = [&](float Distance, float Part, bool Shadow) {
        LookFrom({Distance, 0, Middle.z + 40}, Middle);
        GCamera.Fov = 20;
        const float Up = Middle.z + Part * HALF;
        const Vec3 Spot = Shadow ? Vec3{0, -ToSun.y / ToSun.z * (Up - GROUND), GROUND} : Vec3{3, 0, Up};
        Pole.RenderFlags = RENDER_HIDDEN;
        const SRgb Bare = At(Scene(), Spot);
        Pole.RenderFlags = 0;
        return std::abs(At(Scene(), Spot).G - Bare.G) > 8;
    };
    for (const bool Shadow : {false, true}) {
        EXPECT_TRUE(Seen(350, 0.85f, Shadow)) << Shadow;
        EXPECT_FALSE(Seen(430, 0.70f, Shadow)) << Shadow;
        EXPECT_TRUE(Seen(430, 0.25f, Shadow)) << Shadow;
        EXPECT_FALSE(Seen(497, 0.10f, Shadow)) << Shadow;
    }
}

} // namespace
