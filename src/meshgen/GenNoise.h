// Noise of place, made of a table of 256 random numbers: what trunks bulge by.
//
// A pattern holds as long as its table. Space: lattice units; a feature is about one unit wide. The result runs around
// 0.5. As the table holds whole numbers the gradients of all corners are alike: the pattern has no direction of its
// own. Cost: filling consumes 256 random numbers; a lookup is some hundred operations. Bad input: places that are not
// finite give results that are not.
#pragma once

#include "foundation/Vector.h"

constexpr int NOISE_TABLE_SIZE = 256;

struct SNoise {
    // Takes the next 256 random numbers.
    void NoiseFill();

    // Linear between the entries, and repeating.
    float NoiseLookup(float x) const;
    float Noise3(float x, float y, float z) const;

    float NoiseTable[NOISE_TABLE_SIZE] = {};
};

// The slope of the noise at a lattice point with the hash h, seen from the offset p.
float NoiseGrad(float h, const Vec3& p);
