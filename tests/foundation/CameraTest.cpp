#include "DoubleMatrix.h"
#include "FoundationFixture.h"

#include <algorithm>

namespace {

// Every case starts with a fresh camera and mouse, and leaves one behind.
class Camera : public testing::Test {
protected:
    Camera() { Reset(); }
    ~Camera() override { Reset(); }

    static void Reset() {
        GCamera = CameraState();
        GMousePos = {};
    }

    static void SetUpTilted() {
        GCamera.Eye = {10, -20, 30};
        GCamera.Target = {14, -5, 22};
        GCamera.Up = {0.2f, -0.1f, 3};
        GCamera.Fov = 70;
        GCamera.Aspect = 1.6f;
        GCamera.Near = 2;
        GCamera.Far = 60;
    }

    // A point in the space of the camera: x to the right, y up, z towards the viewer.
    static Vec3 ToView(const Vec3& p) {
        Mat4 View;
        M_CameraLookAt(View);
        Vec3 Out;
        M_Mat4MulPoint(View, p, Out);
        return Out;
    }

    // A point by the camera's perspective to the unit cube, and w.
    static std::array<double, 4> ToClip(const Vec3& p, bool Ortho) {
        Mat4 View;
        Mat4 Projection;
        M_CameraLookAt(View);
        if (Ortho) {
            M_CameraOrtho(Projection);
        } else {
            M_Mat4Perspective(Projection, GCamera.Fov * 3.14159265f / 180, GCamera.Aspect, GCamera.Near, GCamera.Far);
        }
        return SDouble4::Of(Projection) * (SDouble4::Of(View) * std::array<double, 4>{p.x, p.y, p.z, 1});
    }

    // How far inside a volume of clip space a point is; negative outside. Left, right, bottom and top in -1 to 1.
    static double ClipMargin(const std::array<double, 4>& c, double Left = -1, double Right = 1, double Bottom = -1,
                             double Top = 1) {
        return std::min({c[0] - Left * c[3], Right * c[3] - c[0], c[1] - Bottom * c[3], Top * c[3] - c[1], c[2] + c[3],
                         c[3] - c[2]});
    }

    static float PlaneMargin(const Frustum& F, const Vec3& p) {
        float Margin = INFINITY;
        for (const Plane& P : F.Planes) {
            Margin = std::min(Margin, P.D - M_Dot(P.Normal, p));
        }
        return Margin;
    }

    // Compares six planes with a clip-space test on random points.
    template <class TMargin>
    static void ExpectSameVolume(const Frustum& F, TMargin Margin) {
        CRandom Random;
        int Inside = 0;
        for (int n = 0; n < 20000; ++n) {
            const Vec3 p = GCamera.Eye + Random.Point(80);
            const double Expected = Margin(p);
            if (std::fabs(Expected) > 1e-3) {
                ASSERT_EQ(PlaneMargin(F, p) > 0, Expected > 0) << p.x << ' ' << p.y << ' ' << p.z;
                Inside += Expected > 0;
            }
        }
        EXPECT_GT(Inside, 50);
        for (const Plane& P : F.Planes) {
            EXPECT_NEAR(M_Length(P.Normal), 1, 1e-5);
        }
    }
};

} // namespace

TEST_F(Camera, StartsAtTheOriginLookingAlongY) {
    static_assert(sizeof(CameraState) == 13 * sizeof(float));
    CameraState Start;
    M_CameraGet(Start);
    EXPECT_EQ(Start.Eye, Vec3());
    EXPECT_EQ(Start.Target, (Vec3{0, 1, 0}));
    EXPECT_EQ(Start.Up, (Vec3{0, 0, 1}));
    EXPECT_EQ(Start.Fov, 90);
    EXPECT_EQ(Start.Aspect, 1.333f);
    EXPECT_EQ(Start.Near, 1);
    EXPECT_EQ(Start.Far, 2000);
    ExpectNear(ToView({1, 5, 2}), {1, 2, -5}, 1e-6f);
}

TEST_F(Camera, LerpMixesEveryNumberFromTheSecondState) {
    const CameraState a = {{1, 0, 0}, {0, 2, 0}, {0, 0, 3}, 40, 1, 2, 100};
    const CameraState b = {{5, 0, 0}, {0, 6, 0}, {0, 0, 7}, 80, 3, 4, 300};
    M_CameraLerp(a, b, 0.25f);
    EXPECT_EQ(GCamera.Eye, (Vec3{4, 0, 0}));
    EXPECT_EQ(GCamera.Target, (Vec3{0, 5, 0}));
    EXPECT_EQ(GCamera.Up, (Vec3{0, 0, 6}));
    EXPECT_EQ(GCamera.Fov, 70);
    EXPECT_EQ(GCamera.Aspect, 2.5f);
    EXPECT_EQ(GCamera.Near, 3.5f);
    EXPECT_EQ(GCamera.Far, 250);
    M_CameraLerp(a, b, 0);
    EXPECT_EQ(GCamera.Eye, b.Eye);
    M_CameraSet(a);
    EXPECT_EQ(GCamera.Far, 100);
}

TEST_F(Camera, LookAtKeepsLengthsAndPutsTheTargetAhead) {
    SetUpTilted();
    ExpectNear(ToView(GCamera.Eye), {}, 1e-4f);
    ExpectNear(ToView(GCamera.Target), {0, 0, -M_Length(GCamera.Target - GCamera.Eye)}, 1e-4f);
    const Vec3 Above = ToView(GCamera.Eye + GCamera.Up);
    EXPECT_NEAR(Above.x, 0, 1e-4);
    EXPECT_GT(Above.y, 0);
    Mat4 View;
    M_CameraLookAt(View);
    EXPECT_NEAR(M_Mat4Determinant(View), 1, 1e-4);
}

TEST_F(Camera, FrustumIsTheVolumeThatIsDrawn) {
    SetUpTilted();
    Frustum F;
    M_CameraFrustum(F);
    ExpectSameVolume(F, [](const Vec3& p) { return ClipMargin(ToClip(p, false)); });
}

TEST_F(Camera, FrustumPlanesComeInTheirOrder) {
    Frustum F;
    M_CameraFrustum(F);
    const Vec3 Directions[6] = {{0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}, {-1, 0, 0}, {1, 0, 0}};
    for (int i = 0; i < 6; ++i) {
        EXPECT_GT(M_Dot(F.Planes[i].Normal, Directions[i]), 0.5f) << i;
    }
}

TEST_F(Camera, OrthoFrustumIsTheVolumeThatIsDrawn) {
    SetUpTilted();
    GCamera.Fov = 50;
    GCamera.Aspect = 30;
    GCamera.Near = -20;
    Frustum F;
    M_CameraOrthoFrustum(F);
    ExpectSameVolume(F, [](const Vec3& p) { return ClipMargin(ToClip(p, true)); });
    const Vec3 Right = M_Normalized(M_Cross(GCamera.Target - GCamera.Eye, GCamera.Up));
    ExpectNear(F.Planes[2].Normal, -Right, 1e-5f);
    ExpectNear(F.Planes[3].Normal, Right, 1e-5f);
    EXPECT_GT(M_Dot(F.Planes[5].Normal, GCamera.Up), 0);
}

TEST_F(Camera, PickRayIsDrawnUnderTheMouse) {
    SetUpTilted();
    CRandom Random;
    for (int n = 0; n < 50; ++n) {
        GMousePos = {Random.Between(0, 1024), Random.Between(0, 576)};
        Ray R;
        M_CameraPickRay(R);
        EXPECT_EQ(R.Origin, GCamera.Eye);
        EXPECT_NEAR(M_Length(R.Dir), 1, 1e-5);
        const auto Clip = ToClip(R.Origin + R.Dir * 20, false);
        EXPECT_NEAR((Clip[0] / Clip[3] + 1) / 2 * 1024, GMousePos.x, 0.05);
        EXPECT_NEAR((1 - Clip[1] / Clip[3]) / 2 * 576, GMousePos.y, 0.05);
    }
}

TEST_F(Camera, RectFrustumIsTheSameFromEveryCorner) {
    SetUpTilted();
    const float x[2] = {300, 800};
    const float y[2] = {50, 400};
    for (int i = 0; i < 4; ++i) {
        GMousePos = {x[i & 1], y[i >> 1]};
        Frustum F;
        M_CameraRectFrustum({x[~i & 1], y[~i >> 1 & 1]}, F);
        ExpectSameVolume(F, [](const Vec3& p) {
            return ClipMargin(ToClip(p, false), 300 / 512.0 - 1, 800 / 512.0 - 1, 1 - 400 / 288.0, 1 - 50 / 288.0);
        });
    }
}
