// Plain matrices of double precision, row by row as they stand in a book: the yardstick for Mat4.
#pragma once

#include "support/Common.h"

using SDouble4 = std::array<std::array<double, 4>, 4>;

inline SDouble4 DoubleOf(const Mat4& m) {
    SDouble4 Result;
    for (int i = 0; i < 16; ++i) {
        Result[i % 4][i / 4] = m[i];
    }
    return Result;
}

inline std::array<double, 4> operator*(const SDouble4& m, const std::array<double, 4>& v) {
    std::array<double, 4> Result = {};
    for (int i = 0; i < 16; ++i) {
        Result[i / 4] += m[i / 4][i % 4] * v[i % 4];
    }
    return Result;
}

inline SDouble4 operator*(const SDouble4& a, const SDouble4& b) {
    SDouble4 Result = {};
    for (int i = 0; i < 64; ++i) {
        Result[i / 16][i % 4] += a[i / 16][i / 4 % 4] * b[i / 4 % 4][i % 4];
    }
    return Result;
}

// The sum over all permutations, which shares nothing with an expansion into minors.
inline double Determinant(const SDouble4& m) {
    double Sum = 0;
    std::array<int, 4> p = {0, 1, 2, 3};
    do {
        const int Inversions =
            (p[0] > p[1]) + (p[0] > p[2]) + (p[0] > p[3]) + (p[1] > p[2]) + (p[1] > p[3]) + (p[2] > p[3]);
        Sum += (Inversions % 2 ? -1 : 1) * m[0][p[0]] * m[1][p[1]] * m[2][p[2]] * m[3][p[3]];
    } while (std::next_permutation(p.begin(), p.end()));
    return Sum;
}

// Rotation by Angle round a unit axis by the right hand rule: what books call the matrix of the quaternion
// (axis * sin(Angle / 2), cos(Angle / 2)). By Rodrigues' formula.
inline SDouble4 RightHandRotation(const Vec3& Axis, double Angle) {
    const SDouble4 K = {{{0, -Axis.z, Axis.y, 0}, {Axis.z, 0, -Axis.x, 0}, {-Axis.y, Axis.x, 0, 0}, {0, 0, 0, 0}}};
    SDouble4 Result = K * K;
    for (int i = 0; i < 16; ++i) {
        double& Element = Result[i / 4][i % 4];
        Element = (i % 5 == 0) + std::sin(Angle) * K[i / 4][i % 4] + (1 - std::cos(Angle)) * Element;
    }
    return Result;
}

inline void ExpectNear(const Mat4& Actual, const SDouble4& Expected, double Tolerance) {
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(Actual[i], Expected[i % 4][i / 4], Tolerance) << "row " << i % 4 << ", column " << i / 4;
    }
}
