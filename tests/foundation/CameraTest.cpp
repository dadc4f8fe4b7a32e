#include "DoubleMatrix.h"

namespace {

// Leaves a fresh camera and mouse behind.
class Camera : public testing::Test {
protected:
    ~Camera() override {
        GCamera = CameraState();
        GMousePos = {};
    }
    static void SetUpTilted() { GCamera = {{10, -20, 30}, {14, -5, 22}, {0.2f, -0.1f, 3}, 70, 1.6f, 2, 60}; }

    // A point by the camera's matrices to the unit cube, and w.
    static std::array<double, 4> ToClip(const Vec3& p, bool Ortho) {
        Mat4 View, Projection;
        M_CameraLookAt(View);
        M_Mat4Perspective(Projection, GCamera.Fov * 3.14159265f / 180, GCamera.Aspect, GCamera.Near, GCamera.Far);
        if (Ortho) {
            M_CameraOrtho(Projection);
        }
        return DoubleOf(Projection) * (DoubleOf(View) * std::array<double, 4>{p.x, p.y, p.z, 1});
    }

    // Compares the planes on random points with a part of the unit cube: left, right, bottom and top of the picture.
    static void ExpectVolume(const Frustum& F, bool Ortho, const Vec4& Part = {-1, 1, -1, 1}) {
        CRandom Random;
        int Inside = 0;
        for (int n = 0; n < 20000; ++n) {
            const Vec3 p = GCamera.Eye + Random.Point(80);
            const auto [x, y, z, w] = ToClip(p, Ortho);
            const double Margin =
                std::min({x - Part.x * w, Part.y * w - x, y - Part.z * w, Part.w * w - y, z + w, w - z});
            if (std::fabs(Margin) > 1e-3) {
                const bool Within =
                    std::all_of(F.Planes, F.Planes + 6, [&](const Plane& P) { return M_Dot(P.Normal, p) < P.D; });
                ASSERT_EQ(Within, Margin > 0) << p.x << ' ' << p.y << ' ' << p.z;
                Inside += Within;
            }
        }
        EXPECT_GT(Inside, 50);
        for (const Plane& P : F.Planes) {
            EXPECT_NEAR(M_Length(P.Normal), 1, 1e-5);
        }
    }
};

TEST_F(Camera, LerpMixesEveryNumberFromTheSecondState) {
    M_CameraLerp({{1, 0, 0}, {0, 2, 0}, {0, 0, 3}, 40, 1, 2, 100}, {{5, 0, 0}, {0, 6, 0}, {0, 0, 7}, 80, 3, 4, 300},
                 0.25f);
    const CameraState Expected = {{4, 0, 0}, {0, 5, 0}, {0, 0, 6}, 70, 2.5f, 3.5f, 250};
    EXPECT_EQ(std::memcmp(&GCamera, &Expected, sizeof(CameraState)), 0);
}

TEST_F(Camera, FrustumIsTheVolumeThatIsDrawnFromAnyEye) {
    Frustum F;
    M_CameraFrustum(F); // along y: far and near, top and bottom, left and right
    const Vec3 Directions[6] = {{0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}, {-1, 0, 0}, {1, 0, 0}};
    for (int i = 0; i < 6; ++i) {
        EXPECT_GT(M_Dot(F.Planes[i].Normal, Directions[i]), 0.5f) << i;
    }
    SetUpTilted();
    M_CameraFrustum(F);
    ExpectVolume(F, false);
    GCamera.Fov = 50;
    GCamera.Aspect = 30;
    GCamera.Near = -20;
    M_CameraOrthoFrustum(F);
    ExpectVolume(F, true);
    const Vec3 Right = M_Normalized(M_Cross(GCamera.Target - GCamera.Eye, GCamera.Up));
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
        const auto [x, y, z, w] = ToClip(R.Origin + R.Dir * 20, false);
        EXPECT_NEAR((x / w + 1) / 2 * 1024, GMousePos.x, 0.05);
        EXPECT_NEAR((1 - y / w) / 2 * 576, GMousePos.y, 0.05);
    }
}

TEST_F(Camera, RectFrustumIsTheSameFromEveryCorner) {
    SetUpTilted();
    const float x[2] = {300, 800}, y[2] = {50, 400};
    for (int i = 0; i < 4; ++i) {
        GMousePos = {x[i & 1], y[i >> 1]};
        Frustum F;
        M_CameraRectFrustum({x[~i & 1], y[~i >> 1 & 1]}, F);
        ExpectVolume(F, false, {300 / 512.0f - 1, 800 / 512.0f - 1, 1 - 400 / 288.0f, 1 - 50 / 288.0f});
    }
}

} // namespace
