// Plain matrices of double precision, row by row as they stand in a book: the yardstick for Mat4.
#pragma once

#include "foundation/Maths.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <utility>

struct SDouble4 {
    std::array<std::array<double, 4>, 4> Row = {};

    static SDouble4 Identity() { return {{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}}; }
    static SDouble4 Of(const Mat4& m) {
        SDouble4 Result;
        for (int r = 0; r < 4; ++r) {
            for (int c = 0; c < 4; ++c) {
                Result.Row[r][c] = m[4 * c + r];
            }
        }
        return Result;
    }
};

inline SDouble4 operator*(const SDouble4& a, const SDouble4& b) {
    SDouble4 Result;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            for (int k = 0; k < 4; ++k) {
                Result.Row[r][c] += a.Row[r][k] * b.Row[k][c];
            }
        }
    }
    return Result;
}

inline std::array<double, 4> operator*(const SDouble4& m, const std::array<double, 4>& v) {
    std::array<double, 4> Result = {};
    for (int r = 0; r < 4; ++r) {
        for (int k = 0; k < 4; ++k) {
            Result[r] += m.Row[r][k] * v[k];
        }
    }
    return Result;
}

// By elimination with pivots, which shares nothing with an expansion into cofactors.
inline double Determinant(SDouble4 m) {
    double Product = 1;
    for (int c = 0; c < 4; ++c) {
        int Pivot = c;
        for (int r = c + 1; r < 4; ++r) {
            Pivot = std::fabs(m.Row[r][c]) > std::fabs(m.Row[Pivot][c]) ? r : Pivot;
        }
        if (m.Row[Pivot][c] == 0) {
            return 0;
        }
        if (Pivot != c) {
            std::swap(m.Row[Pivot], m.Row[c]);
            Product = -Product;
        }
        Product *= m.Row[c][c];
        for (int r = c + 1; r < 4; ++r) {
            const double Factor = m.Row[r][c] / m.Row[c][c];
            for (int k = c; k < 4; ++k) {
                m.Row[r][k] -= Factor * m.Row[c][k];
            }
        }
    }
    return Product;
}

// Rotation by Angle round a unit axis by the right hand rule: what books call the matrix of the quaternion
// (axis * sin(Angle / 2), cos(Angle / 2)). Made by Rodrigues' formula from the cross product matrix.
inline SDouble4 RightHandRotation(const Vec3& Axis, double Angle) {
    const SDouble4 K = {{{{0, -Axis.z, Axis.y, 0}, {Axis.z, 0, -Axis.x, 0}, {-Axis.y, Axis.x, 0, 0}, {0, 0, 0, 0}}}};
    const SDouble4 KK = K * K;
    SDouble4 Result = SDouble4::Identity();
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            Result.Row[r][c] += std::sin(Angle) * K.Row[r][c] + (1 - std::cos(Angle)) * KK.Row[r][c];
        }
    }
    return Result;
}

inline void ExpectNear(const Mat4& Actual, const SDouble4& Expected, double Tolerance) {
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            EXPECT_NEAR(Actual[4 * c + r], Expected.Row[r][c], Tolerance) << "row " << r << ", column " << c;
        }
    }
}
