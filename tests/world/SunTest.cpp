// The sun: where it stands, what it tells the shaders, and the matrix of its shadow map.
#include "world/LevelFixture.h"

#include <cmath>

namespace {

constexpr float PI = 3.14159265f;
constexpr float SHADOW_HALF = 500; // half of the square that the map covers

void ExpectNear(const Vec3& A, const Vec3& B, float Tolerance) {
    EXPECT_NEAR(A.x, B.x, Tolerance);
    EXPECT_NEAR(A.y, B.y, Tolerance);
    EXPECT_NEAR(A.z, B.z, Tolerance);
}

Vec3 Spherical(double Angle, double Pitch) {
    return {static_cast<float>(std::cos(Angle) * std::sin(Pitch)),
            static_cast<float>(std::sin(Angle) * std::sin(Pitch)), static_cast<float>(std::cos(Pitch))};
}

// The turn by Pitch - pi round Y against the sense of the books, then that by Angle round Z, with plain sines.
Vec3 TurnedByGravity(const Vec3& v, double Angle, double Pitch) {
    const double Tilt = PI - Pitch;
    const double x = v.x * std::cos(Tilt) + v.z * std::sin(Tilt);
    const double z = v.z * std::cos(Tilt) - v.x * std::sin(Tilt);
    return {static_cast<float>(x * std::cos(Angle) + v.y * std::sin(Angle)),
            static_cast<float>(v.y * std::cos(Angle) - x * std::sin(Angle)), static_cast<float>(z)};
}

class Sun : public LevelFixture {
protected:
    void SetUp() override {
        LevelFixture::SetUp();
        if (GPhyWorld) {
            LoadText("WLMF\nscene lda=0.7 ldp=1.1 cldst=800\n");
            GCamera.Eye = {100, -200, 300};
            GCamera.Target = {0, 0, 0};
        }
    }

    static void SetAngles(float Angle, float Pitch, float GravityAngle = 0, float GravityPitch = 3.1415927f) {
        GLevel->Params.LightDir_Angle = Angle;
        GLevel->Params.LightDir_Pitch = Pitch;
        GLevel->Params.Gravity_Angle = GravityAngle;
        GLevel->Params.Gravity_Pitch = GravityPitch;
    }

    // In the clip space of the shadow map.
    static Vec3 OnMap(const Vec3& Point) {
        Vec3 Clip;
        M_Mat4MulPoint(GSMMatrix, Point, Clip);
        return Clip;
    }
};

TEST_F(Sun, StandsWhereItsAnglesSayUnderDefaultGravity) {
    for (const float Angle : {-1.0f, 0.0f, 0.7f, 3.0f}) {
        for (const float Pitch : {0.0f, 0.5f, 1.5f, 2.5f}) {
            SetAngles(Angle, Pitch);
            ExpectNear(GLevel->SunDirection(), Spherical(Angle, Pitch), 1e-6f);
        }
    }
}

TEST_F(Sun, TurnsWithGravity) {
    for (const float GravityAngle : {-2.0f, 0.0f, 1.5707963f}) {
        for (const float GravityPitch : {2.9f, 3.1415927f, 3.4f}) {
            SetAngles(0.7f, 1.1f, GravityAngle, GravityPitch);
            ExpectNear(GLevel->SunDirection(), TurnedByGravity(Spherical(0.7, 1.1), GravityAngle, GravityPitch), 1e-5f);
        }
    }
}

// Along the axis that slopes take, up is the opposite of what the level's gravity pulls to.
TEST_F(Sun, StandsOverTheSlopeWithPitchZero) {
    SetAngles(0, 0, 1.5707963f, 2.9f);
    ExpectNear(GLevel->SunDirection(), -Spherical(1.5707963, 2.9), 1e-5f);
}

TEST_F(Sun, LightGoesToTheShadersAndTheCameraStays) {
    SLevelParams& P = GLevel->Params;
    P.CloudAmount = 0.25f;
    P.LightColor_R = 0.9f;
    P.AmbientColor_B = 0.3f;
    GCurLight = LIGHT_SPOT;
    GProjTexture = 7;
    const CameraState Before = GCamera;
    GLevel->SetSunLight();
    EXPECT_EQ(GCurLight, static_cast<const char*>(LIGHT_AMBDIR));
    ExpectNear(GLightDir, -Spherical(0.7, 1.1), 1e-6f);
    EXPECT_EQ(GLightDirW, 0.25f);
    EXPECT_EQ(GProjTexture, 0u);
    EXPECT_EQ(GLightColor, Vec3({0.9f, 1, 1}));
    EXPECT_EQ(GAmbientColor, Vec3({0.1f, 0.15f, 0.3f}));
    EXPECT_EQ(GShadowTexture, GLevel->ShadowRT.DepthTex);
    EXPECT_NE(GShadowTexture, 0u);
    EXPECT_EQ(GCamera.Eye, Before.Eye);
    EXPECT_EQ(GCamera.Target, Before.Target);
    EXPECT_EQ(GCamera.Fov, Before.Fov);
    EXPECT_EQ(GCamera.Far, Before.Far);
}

TEST_F(Sun, ShadowMapFollowsTheEyeAndCoversAThousandUnits) {
    const Vec3 Eye = GCamera.Eye;
    for (const float Pitch : {0.0f, 1.1f, 1.5707964f}) {
        for (const float GravityPitch : {3.1415927f, 2.9f}) {
            SetAngles(0.7f, Pitch, 1.5707963f, GravityPitch);
            GLevel->SetSunLight();
            ExpectNear(OnMap(Eye), {0, 0, 1.0f / 3}, 1e-4f);

            const Vec3 ToSun = GLevel->SunDirection();
            Vec3 Across = M_Cross(ToSun, Vec3{0.3f, 0.9f, 0.1f});
            M_Normalize(Across);
            const Vec3 Other = M_Cross(ToSun, Across);
            for (const Vec3& Axis : {Across, Other}) {
                const Vec3 Rim = OnMap(Eye + Axis * 499);
                EXPECT_NEAR(std::hypot(Rim.x, Rim.y), 499 / SHADOW_HALF, 1e-3f);
                EXPECT_NEAR(Rim.z, 1.0f / 3, 1e-4f) << "as deep as the eye";
            }
            EXPECT_NEAR(OnMap(Eye + ToSun * 1599).z, -1, 2e-3f) << "towards the sun up to twice the clip distance";
            EXPECT_NEAR(OnMap(Eye - ToSun * 799).z, 1, 2e-3f) << "behind the eye up to the clip distance";
        }
    }
}

// The sides of the map lie along the camera's own axes: a point 499 units along one is inside, one of 501 is not.
TEST_F(Sun, ShadowMapEndsAtItsSides) {
    const Vec3 Eye = GCamera.Eye;
    GLevel->SetSunLight();
    const CameraState Before = GCamera;
    GLevel->SetSunCamera();
    const Vec3 Sight = GCamera.Target - GCamera.Eye;
    Vec3 Up = GCamera.Up;
    M_Normalize(Up);
    Vec3 Side = M_Cross(Sight, Up);
    M_Normalize(Side);
    GCamera = Before;
    EXPECT_NEAR(M_Length(Sight), 800, 0.01f);
    EXPECT_NEAR(M_Dot(Sight, Up), 0, 0.01f);
    for (const float Sign : {-1.0f, 1.0f}) {
        EXPECT_LT(std::abs(OnMap(Eye + Side * (499 * Sign)).x), 1);
        EXPECT_GT(std::abs(OnMap(Eye + Side * (501 * Sign)).x), 1);
        EXPECT_LT(std::abs(OnMap(Eye + Up * (499 * Sign)).y), 1);
        EXPECT_GT(std::abs(OnMap(Eye + Up * (501 * Sign)).y), 1);
    }
}

} // namespace
