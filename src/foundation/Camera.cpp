#include "foundation/Camera.h"

#include "foundation/Screen.h"

#include <algorithm>

namespace {

constexpr Mat4 IDENTITY = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};

// The axes of the view and the half sizes of the picture at unit distance from the eye.
struct SView {
    Vec3 Forward = M_Normalized(GCamera.Target - GCamera.Eye);
    Vec3 Right = M_Normalized(M_Cross(Forward, M_Normalized(GCamera.Up)));
    Vec3 Upward = M_Cross(Right, Forward);
    float HalfHeight = static_cast<float>(std::tan(static_cast<double>(GCamera.Fov / 180 * PI * 0.5f)));
    float HalfWidth = HalfHeight * GCamera.Aspect;

    // From the eye towards a place in the picture: x from -1 at the left to 1, y from -1 at the top to 1.
    Vec3 Towards(float x, float y) const { return Forward + Right * (HalfWidth * x) - Upward * (HalfHeight * y); }
};

// Screen position to -1 ... 1, y still downward.
Vec2 ToUnit(const Vec2& Screen) {
    return {2 * (Screen.x / WINDOW_WIDTH) - 1, 2 * (Screen.y / WINDOW_HEIGHT) - 1};
}

Plane PlaneThrough(const Vec3& Normal, const Vec3& Point, float Offset) {
    return {Normal, M_Dot(Normal, Point) + Offset};
}

// Through the eye and two directions; First x Second points into the volume.
Plane SidePlane(const Vec3& First, const Vec3& Second) {
    return PlaneThrough(-M_Normalized(M_Cross(First, Second)), GCamera.Eye, 0);
}

void FarAndNear(const SView& View, Frustum& Out) {
    Out.Planes[0] = PlaneThrough(View.Forward, GCamera.Eye, GCamera.Far);
    Out.Planes[1] = PlaneThrough(-View.Forward, GCamera.Eye, -GCamera.Near);
}

// Min and Max in the units of SView::Towards, so Min is the upper left.
void PerspectiveFrustum(const Vec2& Min, const Vec2& Max, Frustum& Out) {
    const SView View;
    const Vec3 TopLeft = View.Towards(Min.x, Min.y);
    const Vec3 TopRight = View.Towards(Max.x, Min.y);
    const Vec3 BottomLeft = View.Towards(Min.x, Max.y);
    const Vec3 BottomRight = View.Towards(Max.x, Max.y);
    FarAndNear(View, Out);
    Out.Planes[2] = SidePlane(TopLeft, TopRight);
    Out.Planes[3] = SidePlane(BottomRight, BottomLeft);
    Out.Planes[4] = SidePlane(BottomLeft, TopLeft);
    Out.Planes[5] = SidePlane(TopRight, BottomRight);
}

} // namespace

CameraState GCamera;
Mat4 GViewMatrix = IDENTITY;
Mat4 GProjectionMatrix = IDENTITY;
Mat4 GWorldMatrix = IDENTITY;
Vec2 GMousePos;
Vec3 GLodCameraPos;

void M_CameraGet(CameraState& Out) {
    Out = GCamera;
}

void M_CameraSet(const CameraState& In) {
    GCamera = In;
}

void M_CameraLerp(const CameraState& a, const CameraState& b, float t) {
    const Vec4 Lens = M_Lerp4({a.Fov, a.Aspect, a.Near, a.Far}, {b.Fov, b.Aspect, b.Near, b.Far}, t);
    GCamera = {M_Lerp3(a.Eye, b.Eye, t),
               M_Lerp3(a.Target, b.Target, t),
               M_Lerp3(a.Up, b.Up, t),
               Lens.x,
               Lens.y,
               Lens.z,
               Lens.w};
}

void M_CameraLookAt(Mat4& Out) {
    const Vec3 f = M_Normalized(GCamera.Target - GCamera.Eye);
    const Vec3 s = M_Normalized(M_Cross(f, GCamera.Up));
    const Vec3 u = M_Cross(s, f);
    const Mat4 Axes = {{s.x, u.x, -f.x, 0, s.y, u.y, -f.y, 0, s.z, u.z, -f.z, 0, 0, 0, 0, 1}};
    Mat4 Move;
    M_Mat4Translation(Move, -GCamera.Eye);
    M_Mat4Mul(Out, Axes, Move);
}

void M_CameraPerspective(Mat4& Out) {
    M_Mat4Perspective(Out, GCamera.Fov * DEGREES, GCamera.Aspect, GCamera.Near, GCamera.Far);
}

void M_CameraOrtho(Mat4& Out) {
    M_Mat4Ortho(Out, -GCamera.Fov / 2, GCamera.Fov / 2, GCamera.Aspect / 2, -GCamera.Aspect / 2, GCamera.Near,
                GCamera.Far);
}

void M_CameraFrustum(Frustum& Out) {
    PerspectiveFrustum({-1, -1}, {1, 1}, Out);
}

void M_CameraOrthoFrustum(Frustum& Out) {
    const SView View;
    FarAndNear(View, Out);
    Out.Planes[2] = PlaneThrough(-View.Right, GCamera.Eye, GCamera.Fov / 2);
    Out.Planes[3] = PlaneThrough(View.Right, GCamera.Eye, GCamera.Fov / 2);
    Out.Planes[4] = PlaneThrough(-View.Upward, GCamera.Eye, GCamera.Aspect / 2);
    Out.Planes[5] = PlaneThrough(View.Upward, GCamera.Eye, GCamera.Aspect / 2);
}

void M_CameraPickRay(Ray& Out) {
    const Vec2 At = ToUnit(GMousePos);
    Out = {GCamera.Eye, M_Normalized(SView().Towards(At.x, At.y))};
}

void M_CameraRectFrustum(const Vec2& Corner, Frustum& Out) {
    const Vec2 Min = {std::min(Corner.x, GMousePos.x), std::min(Corner.y, GMousePos.y)};
    const Vec2 Max = {std::max(Corner.x, GMousePos.x), std::max(Corner.y, GMousePos.y)};
    PerspectiveFrustum(ToUnit(Min), ToUnit(Max), Out);
}
