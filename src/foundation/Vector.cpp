#include "foundation/Vector.h"

namespace {

constexpr float NEAR_DISTANCE = 0.0001f;

// Above this cosine the arc is so short that a straight line is as good and the division by its sine is not.
constexpr float CIRCLE_STRAIGHT = 0.9995f;
constexpr float CIRCLE_OPPOSITE = -0.9999f;

UINT32 ColorByte(float v) {
    if (!(v > 0)) {
        return 0;
    }
    return static_cast<UINT32>((v < 1 ? v : 1.0f) * 255.0f);
}

} // namespace

int M_Vec4Near(const Vec4& a, const Vec4& b) {
    const Vec4 d = a - b;
    return M_Abs(d.x) < NEAR_DISTANCE && M_Abs(d.y) < NEAR_DISTANCE && M_Abs(d.z) < NEAR_DISTANCE &&
           M_Abs(d.w) < NEAR_DISTANCE;
}

Vec2 M_CircleSlerp(const Vec2& From, const Vec2& To, float t) {
    const float d = From.x * To.x + From.y * To.y;
    if (d > CIRCLE_STRAIGHT) {
        return From + (To - From) * t;
    }
    if (d < CIRCLE_OPPOSITE) {
        return {};
    }
    const float a = static_cast<float>(std::acos(static_cast<double>(d)));
    return (To * M_Sin(a * t) + From * M_Sin((1 - t) * a)) / M_Sin(a);
}

UINT32 M_PackColor(const Vec4& Color) {
    return ColorByte(Color.x) | ColorByte(Color.y) << 8 | ColorByte(Color.z) << 16 | ColorByte(Color.w) << 24;
}
