// Vec2, Vec3 and Vec4: the value types of the whole program, plain single-precision aggregates without padding, so that
// an array of Vec3 is 12 bytes a step and can be handed to the GPU unchanged. Everything is zero at construction.
//
// Vec3 stands for positions, directions, scales and RGB colours; Vec4 also for RGBA colours (x is red, w is alpha).
// World space is right-handed. Angles are radians.
// Cost: all inline, nothing allocates. The scalar functions go through the double-precision maths library, so that a
// float result does not depend on which single-precision library a machine has.
// Bad input: NaN and infinity pass through by the rules of IEEE arithmetic; only M_Normalize guards against zero.
#pragma once

#include "foundation/Types.h"

#include <cmath>

constexpr float PI = 3.1415927410125732f;
constexpr float DEGREES = PI / 180.0f; // in radians

struct Vec2 {
    float x = 0;
    float y = 0;
};

struct Vec3 {
    float x = 0;
    float y = 0;
    float z = 0;

    // Component 0 is x, 1 is y, 2 is z. Other numbers are not allowed.
    float& operator[](int Axis) { return Axis == 0 ? x : Axis == 1 ? y : z; }
    float operator[](int Axis) const { return Axis == 0 ? x : Axis == 1 ? y : z; }

    Vec3& operator+=(const Vec3& o) {
        x += o.x;
        y += o.y;
        z += o.z;
        return *this;
    }
    Vec3& operator-=(const Vec3& o) {
        x -= o.x;
        y -= o.y;
        z -= o.z;
        return *this;
    }
    Vec3& operator*=(float s) {
        x *= s;
        y *= s;
        z *= s;
        return *this;
    }
};

struct Vec4 {
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 0;
};

inline Vec2 operator+(const Vec2& a, const Vec2& b) {
    return {a.x + b.x, a.y + b.y};
}
inline Vec2 operator-(const Vec2& a, const Vec2& b) {
    return {a.x - b.x, a.y - b.y};
}
inline Vec2 operator*(const Vec2& v, float s) {
    return {v.x * s, v.y * s};
}
inline Vec2 operator/(const Vec2& v, float s) {
    return {v.x / s, v.y / s};
}
inline bool operator==(const Vec2& a, const Vec2& b) {
    return a.x == b.x && a.y == b.y;
}

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator-(const Vec3& v) {
    return {-v.x, -v.y, -v.z};
}
inline Vec3 operator*(const Vec3& v, float s) {
    return {v.x * s, v.y * s, v.z * s};
}
inline Vec3 operator*(float s, const Vec3& v) {
    return v * s;
}
// Component by component: for scales and colours.
inline Vec3 operator*(const Vec3& a, const Vec3& b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline Vec3 operator/(const Vec3& v, float s) {
    return {v.x / s, v.y / s, v.z / s};
}
inline bool operator==(const Vec3& a, const Vec3& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

inline Vec4 operator+(const Vec4& a, const Vec4& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w};
}
inline Vec4 operator-(const Vec4& a, const Vec4& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w};
}
inline Vec4 operator*(const Vec4& v, float s) {
    return {v.x * s, v.y * s, v.z * s, v.w * s};
}
inline bool operator==(const Vec4& a, const Vec4& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

inline float M_Abs(float v) {
    return static_cast<float>(std::fabs(static_cast<double>(v)));
}
inline float M_Cos(float v) {
    return static_cast<float>(std::cos(static_cast<double>(v)));
}
inline float M_Sin(float v) {
    return static_cast<float>(std::sin(static_cast<double>(v)));
}
inline float M_Sqrt(float v) {
    return static_cast<float>(std::sqrt(static_cast<double>(v)));
}
inline float M_Floor(float v) {
    return static_cast<float>(std::floor(static_cast<double>(v)));
}
inline float M_Ceil(float v) {
    return static_cast<float>(std::ceil(static_cast<double>(v)));
}
inline float M_Atan2(float y, float x) {
    return static_cast<float>(std::atan2(static_cast<double>(y), static_cast<double>(x)));
}

inline float M_Dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 M_Cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float M_Length(const Vec3& v) {
    return M_Sqrt(M_Dot(v, v));
}

// In place. A vector whose squared length is exactly zero stays as it is.
inline void M_Normalize(Vec3& v) {
    const float Squared = M_Dot(v, v);
    if (Squared != 0) {
        v = v / M_Sqrt(Squared);
    }
}
inline Vec3 M_Normalized(Vec3 v) {
    M_Normalize(v);
    return v;
}

// b + (a - b) * t: mind the order, t = 0 gives the second argument and t = 1 the first.
inline Vec3 M_Lerp3(const Vec3& a, const Vec3& b, float t) {
    return b + (a - b) * t;
}
inline Vec4 M_Lerp4(const Vec4& a, const Vec4& b, float t) {
    return b + (a - b) * t;
}

// (angle round Z, angle from +Z, radius) to a point.
inline Vec3 M_Spherical(const Vec3& v) {
    return {M_Cos(v.x) * M_Sin(v.y) * v.z, M_Sin(v.x) * M_Sin(v.y) * v.z, M_Cos(v.y) * v.z};
}

// 1 if all four components differ by less than 0.0001, else 0.
int M_Vec4Near(const Vec4& a, const Vec4& b);

// Turns the unit vector From into the unit vector To along the circle: t = 0 gives From, t = 1 gives To. Opposite
// vectors have no shorter way and give zero.
Vec2 M_CircleSlerp(const Vec2& From, const Vec2& To, float t);

// A colour with components 0 to 1 as the bytes R, G, B, A in memory. Components are clamped, then truncated.
UINT32 M_PackColor(const Vec4& Color);
