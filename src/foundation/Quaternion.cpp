#include "foundation/Quaternion.h"

#include "foundation/Matrix.h"

#include <algorithm>

namespace {

float Dot(const Quat& a, const Quat& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

} // namespace

Quat M_QuatNormalized(const Quat& q) {
    const float Scale = 1 / M_Sqrt(Dot(q, q));
    return {q.x * Scale, q.y * Scale, q.z * Scale, q.w * Scale};
}

void M_QuatNormalize(Quat& q) {
    const float Length = M_Sqrt(Dot(q, q));
    if (Length != 0) {
        q = {q.x / Length, q.y / Length, q.z / Length, q.w / Length};
    }
}

void M_QuatMul(Quat& Out, const Quat& a, const Quat& b) {
    Out = Quat{a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y + a.y * b.w + a.z * b.x - a.x * b.z,
               a.w * b.z + a.z * b.w + a.x * b.y - a.y * b.x, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

Quat M_QuatSlerp(Quat From, Quat To, float t) {
    float d = std::clamp(Dot(From, To), -1.0f, 1.0f);
    if (d < 0) {
        d = -d;
        To = {-To.x, -To.y, -To.z, -To.w};
    }
    // The dot product of a rounded unit quaternion with itself is rarely exactly 1. What is left of To - From * d would
    // then be a long vector made of rounding errors, parallel to From.
    if (From == To) {
        return From;
    }
    const float Theta = static_cast<float>(std::acos(static_cast<double>(d))) * t;
    Quat Side = {To.x - From.x * d, To.y - From.y * d, To.z - From.z * d, To.w - From.w * d};
    M_QuatNormalize(Side);
    const float c = M_Cos(Theta);
    const float s = M_Sin(Theta);
    return {From.x * c + Side.x * s, From.y * c + Side.y * s, From.z * c + Side.z * s, From.w * c + Side.w * s};
}

void M_QuatRotate(const Quat& q, const Vec3& v, Vec3& Out) {
    Mat4 Rotation;
    M_Mat4FromQuat(Rotation, q);
    Vec4 Rotated;
    M_Mat4MulVec4(Rotation, {v.x, v.y, v.z, 1}, Rotated);
    Out = {Rotated.x, Rotated.y, Rotated.z};
}

void M_QuatToEuler(const Quat& q, Vec3& Out) {
    const float xx = q.x * q.x;
    const float yy = q.y * q.y;
    const float zz = q.z * q.z;
    const float ww = q.w * q.w;
    // Looking straight up or down, rounding takes the sine a little beyond 1.
    const float Sine = std::clamp(-2 * (q.x * q.z - q.w * q.y), -1.0f, 1.0f);
    Out.x = M_Atan2(2 * (q.w * q.x + q.y * q.z), ww - xx - yy + zz);
    Out.y = static_cast<float>(std::asin(static_cast<double>(Sine)));
    Out.z = M_Atan2(2 * (q.w * q.z + q.x * q.y), ww + xx - yy - zz);
}

Quat M_QuatFromEuler(const Vec3& Angles) {
    const Quat OuterZ = {0, 0, M_Sin(Angles.z / 2), M_Cos(Angles.z / 2)};
    const Quat MiddleY = {0, M_Sin(Angles.y / 2), 0, M_Cos(Angles.y / 2)};
    const Quat InnerZ = {0, 0, M_Sin(Angles.x / 2), M_Cos(Angles.x / 2)};
    Quat Result;
    M_QuatMul(Result, OuterZ, MiddleY);
    M_QuatMul(Result, Result, InnerZ);
    M_QuatNormalize(Result);
    return Result;
}
