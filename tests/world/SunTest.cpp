// The sun: where it stands, what it tells the shaders, and the matrix of its shadow map.
#include "world/LevelFixture.h"

namespace {

Vec3 Spherical(double Angle, double Pitch) {
    return {static_cast<float>(std::cos(Angle) * std::sin(Pitch)),
            static_cast<float>(std::sin(Angle) * std::sin(Pitch)), static_cast<float>(std::cos(Pitch))};
}

// The turn by Pitch - pi round Y against the sense of the books, then that by Angle round Z, with plain sines.
Vec3 TurnedByGravity(const Vec3& v, double Angle, double Pitch) {
    const double Tilt = static_cast<double>(PI) - Pitch;
    const double x = v.x * std::cos(Tilt) + v.z * std::sin(Tilt);
    const double z = v.z * std::cos(Tilt) - v.x * std::sin(Tilt);
    return {static_cast<float>(x * std::cos(Angle) + v.y * std::sin(Angle)),
            static_cast<float>(v.y * std::cos(Angle) - x * std::sin(Angle)), static_cast<float>(z)};
}

class Sun : public LevelFixture {
protected:
    void Start() override {
        LevelFixture::Start();
        LoadText("WLMF\nscene lda=0.7 ldp=1.1 cldst=800 cldam=0.25 lcr=0.9\n");
        LookFrom({100, -200, 300}, {0, 0, 0});
    }

    // For a number of angles of the sun under no, one and another tilt of gravity.
    static void ForAllAngles(void (*Check)()) {
        SLevelParams& P = GLevel->Params;
        for (int i = 0; i < 60; ++i) {
            P.LightDir_Angle = static_cast<float>(i % 4) * 1.3f - 1;
            P.LightDir_Pitch = static_cast<float>(i % 5) * 0.7f;
            P.Gravity_Angle = static_cast<float>(i / 3 % 3) * 1.7f - 2;
            P.Gravity_Pitch = PI + static_cast<float>(i % 3) * 0.25f * (i % 2 ? 1.0f : -1.0f);
            Check();
        }
    }

    // In the clip space of the shadow map.
    static Vec3 OnMap(const Vec3& Offset) {
        Vec3 Clip;
        M_Mat4MulPoint(GSMMatrix, GCamera.Eye + Offset, Clip);
        return Clip;
    }
};

TEST_F(Sun, StandsWhereItsAnglesSayAndTurnsWithGravity) {
    ForAllAngles([] {
        const SLevelParams& P = GLevel->Params;
        const Vec3 Plain = Spherical(P.LightDir_Angle, P.LightDir_Pitch);
        ExpectNear(GLevel->SunDirection(), TurnedByGravity(Plain, P.Gravity_Angle, P.Gravity_Pitch), 1e-5f);
    });
}

TEST_F(Sun, ShadowMapFollowsTheEyeAndCoversAThousandUnits) {
    ForAllAngles([] {
        const CameraState Before = GCamera;
        GLevel->SetSunLight();
        GLevel->SetSunCamera();
        Vec3 Up = GCamera.Up;
        M_Normalize(Up);
        GCamera = Before;
        const Vec3 ToSun = GLevel->SunDirection();
        const Vec3 Side = M_Cross(Up, ToSun);
        EXPECT_NEAR(M_Dot(Up, ToSun), 0, 1e-5f);
        for (const float Way : {-501.0f, -499.0f, 0.0f, 499.0f, 501.0f}) {
            ExpectNear(OnMap(Side * Way), {Way / 500, 0, 1.0f / 3}, 5e-4f);
            ExpectNear(OnMap(Up * Way), {0, Way / 500, 1.0f / 3}, 5e-4f);
        }
        EXPECT_NEAR(OnMap(ToSun * 1599).z, -1, 2e-3f) << "towards the sun up to twice the clip distance";
        EXPECT_NEAR(OnMap(-ToSun * 799).z, 1, 2e-3f) << "behind the eye up to the clip distance";
    });
}

} // namespace
