#include "meshgen/GenNoise.h"

#include "platform/Platform.h"

#include <cmath>

namespace {

constexpr int GRADIENTS = 16;

// To the middles of a cube's edges; four stand twice, so that there are sixteen.
constexpr Vec3 DIRECTIONS[GRADIENTS] = {
    {1, 1, 0}, {-1, 1, 0}, {1, -1, 0}, {-1, -1, 0}, {1, 0, 1}, {-1, 0, 1}, {1, 0, -1}, {-1, 0, -1},
    {0, 1, 1}, {0, -1, 1}, {0, 1, -1}, {0, -1, -1}, {1, 1, 0}, {0, -1, 1}, {-1, 1, 0}, {0, -1, -1},
};

// A whole number into 0 to Size - 1; what is not finite goes to 0.
int WrapIndex(float Whole, int Size) {
    const float Rest = std::fmod(Whole, static_cast<float>(Size));
    if (!std::isfinite(Rest)) {
        return 0;
    }
    return static_cast<int>(Rest < 0 ? Rest + static_cast<float>(Size) : Rest);
}

float Fade(float t) {
    return t * t * t * (t * (t * 6 - 15) + 10);
}

float Lerp(float a, float b, float t) {
    return a + (b - a) * t;
}

} // namespace

void SNoise::NoiseFill() {
    for (float& Entry : NoiseTable) {
        Entry = static_cast<float>(PlatRand() % NOISE_TABLE_SIZE);
    }
}

float SNoise::NoiseLookup(float x) const {
    const float Low = NoiseTable[WrapIndex(std::floor(x), NOISE_TABLE_SIZE)];
    const float High = NoiseTable[WrapIndex(std::ceil(x), NOISE_TABLE_SIZE)];
    return Low + std::fmod(x, 1.0f) * (High - Low);
}

float NoiseGrad(float h, const Vec3& p) {
    const float g = h * GRADIENTS;
    const Vec3& Low = DIRECTIONS[WrapIndex(std::floor(g), GRADIENTS)];
    const Vec3& High = DIRECTIONS[WrapIndex(std::ceil(g), GRADIENTS)];
    return M_Dot(Low + (High - Low) * std::fmod(g, 1.0f), p);
}

float SNoise::Noise3(float x, float y, float z) const {
    constexpr float SIZE = NOISE_TABLE_SIZE;
    const float X = std::fmod(std::floor(x), SIZE);
    const float Y = std::fmod(std::floor(y), SIZE);
    const float Z = std::fmod(std::floor(z), SIZE);
    const Vec3 f = {x - std::floor(x), y - std::floor(y), z - std::floor(z)};
    const float u = Fade(f.x);
    const float v = Fade(f.y);
    const float A = NoiseLookup(X) + Y;
    const float AA = NoiseLookup(A) + Z;
    const float AB = NoiseLookup(A + 1) + Z;
    const float B = NoiseLookup(X + 1) + Y;
    const float BA = NoiseLookup(B) + Z;
    const float BB = NoiseLookup(B + 1) + Z;
    // Both layers in z use the same four hashes.
    const auto Layer = [&](float k) {
        const auto g = [&](float H, float dx, float dy) { return NoiseGrad(NoiseLookup(H), f - Vec3{dx, dy, k}); };
        return Lerp(Lerp(g(AA, 0, 0), g(BA, 1, 0), u), Lerp(g(AB, 0, 1), g(BB, 1, 1), u), v);
    };
    return Lerp(Layer(0), Layer(1), Fade(f.z)) * 0.5f + 0.5f;
}
