#include "foundation/Matrix.h"

#include <algorithm>

namespace {

// The twelve 2 by 2 minors from which determinant and adjugate are made: Upper[] of rows 0 and 1, Lower[] of rows 2
// and 3, for the column pairs 01, 02, 03, 12, 13, 23.
struct SMinors {
    float Upper[6];
    float Lower[6];

    explicit SMinors(const Mat4& m) {
        constexpr int PAIRS[6][2] = {{0, 1}, {0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 3}};
        for (int i = 0; i < 6; ++i) {
            const int a = 4 * PAIRS[i][0];
            const int b = 4 * PAIRS[i][1];
            Upper[i] = m[a] * m[b + 1] - m[b] * m[a + 1];
            Lower[i] = m[a + 2] * m[b + 3] - m[b + 2] * m[a + 3];
        }
    }

    float Determinant() const {
        return Upper[0] * Lower[5] - Upper[1] * Lower[4] + Upper[2] * Lower[3] + Upper[3] * Lower[2] -
               Upper[4] * Lower[1] + Upper[5] * Lower[0];
    }
};

} // namespace

void M_Mat4Identity(Mat4& Out) {
    Out = {};
    Out[0] = Out[5] = Out[10] = Out[15] = 1;
}

void M_Mat4Translation(Mat4& Out, const Vec3& Offset) {
    M_Mat4Identity(Out);
    Out[12] = Offset.x;
    Out[13] = Offset.y;
    Out[14] = Offset.z;
}

void M_Mat4Mul(Mat4& Out, const Mat4& a, const Mat4& b) {
    Mat4 Product;
    for (int c = 0; c < 16; c += 4) {
        for (int r = 0; r < 4; ++r) {
            Product[c + r] = a[r] * b[c] + a[4 + r] * b[c + 1] + a[8 + r] * b[c + 2] + a[12 + r] * b[c + 3];
        }
    }
    Out = Product;
}

float M_Mat4Determinant(const Mat4& m) {
    return SMinors(m).Determinant();
}

float M_Mat4Inverse(const Mat4& m, Mat4& Out) {
    const SMinors Minors(m);
    const float Determinant = Minors.Determinant();
    if (Determinant == 0) {
        return 0;
    }
    const float* u = Minors.Upper;
    const float* l = Minors.Lower;
    const float s = 1 / Determinant;
    Mat4 Inverse;
    Inverse[0] = (m[5] * l[5] - m[9] * l[4] + m[13] * l[3]) * s;
    Inverse[4] = (-m[4] * l[5] + m[8] * l[4] - m[12] * l[3]) * s;
    Inverse[8] = (m[7] * u[5] - m[11] * u[4] + m[15] * u[3]) * s;
    Inverse[12] = (-m[6] * u[5] + m[10] * u[4] - m[14] * u[3]) * s;
    Inverse[1] = (-m[1] * l[5] + m[9] * l[2] - m[13] * l[1]) * s;
    Inverse[5] = (m[0] * l[5] - m[8] * l[2] + m[12] * l[1]) * s;
    Inverse[9] = (-m[3] * u[5] + m[11] * u[2] - m[15] * u[1]) * s;
    Inverse[13] = (m[2] * u[5] - m[10] * u[2] + m[14] * u[1]) * s;
    Inverse[2] = (m[1] * l[4] - m[5] * l[2] + m[13] * l[0]) * s;
    Inverse[6] = (-m[0] * l[4] + m[4] * l[2] - m[12] * l[0]) * s;
    Inverse[10] = (m[3] * u[4] - m[7] * u[2] + m[15] * u[0]) * s;
    Inverse[14] = (-m[2] * u[4] + m[6] * u[2] - m[14] * u[0]) * s;
    Inverse[3] = (-m[1] * l[3] + m[5] * l[1] - m[9] * l[0]) * s;
    Inverse[7] = (m[0] * l[3] - m[4] * l[1] + m[8] * l[0]) * s;
    Inverse[11] = (-m[3] * u[3] + m[7] * u[1] - m[11] * u[0]) * s;
    Inverse[15] = (m[2] * u[3] - m[6] * u[1] + m[10] * u[0]) * s;
    Out = Inverse;
    return Determinant;
}

void M_Mat4MulVec4(const Mat4& m, const Vec4& In, Vec4& Out) {
    Out = Vec4{m[0] * In.x + m[4] * In.y + m[8] * In.z + m[12] * In.w,
               m[1] * In.x + m[5] * In.y + m[9] * In.z + m[13] * In.w,
               m[2] * In.x + m[6] * In.y + m[10] * In.z + m[14] * In.w,
               m[3] * In.x + m[7] * In.y + m[11] * In.z + m[15] * In.w};
}

void M_Mat4MulDir(const Mat4& m, const Vec3& In, Vec3& Out) {
    Vec4 Result;
    M_Mat4MulVec4(m, {In.x, In.y, In.z, 0}, Result);
    Out = {Result.x, Result.y, Result.z};
}

void M_Mat4MulPoint(const Mat4& m, const Vec3& In, Vec3& Out) {
    Vec4 Result;
    M_Mat4MulVec4(m, {In.x, In.y, In.z, 1}, Result);
    Out = {Result.x, Result.y, Result.z};
}

void M_Mat4FromQuat(Mat4& Out, const Quat& q) {
    const float xx = q.x * q.x;
    const float yy = q.y * q.y;
    const float zz = q.z * q.z;
    const float xy = q.x * q.y;
    const float xz = q.x * q.z;
    const float yz = q.y * q.z;
    const float xw = q.x * q.w;
    const float yw = q.y * q.w;
    const float zw = q.z * q.w;
    M_Mat4Identity(Out);
    Out[0] = 1 - 2 * yy - 2 * zz;
    Out[1] = 2 * xy - 2 * zw;
    Out[2] = 2 * xz + 2 * yw;
    Out[4] = 2 * xy + 2 * zw;
    Out[5] = 1 - 2 * xx - 2 * zz;
    Out[6] = 2 * yz - 2 * xw;
    Out[8] = 2 * xz - 2 * yw;
    Out[9] = 2 * yz + 2 * xw;
    Out[10] = 1 - 2 * xx - 2 * yy;
}

void M_Mat4AxisAngle(Mat4& Out, const Vec3& Axis, float Angle) {
    const Vec3 a = M_Normalized(Axis);
    const float c = M_Cos(Angle);
    const float s = M_Sin(Angle);
    const float t = 1 - c;
    M_Mat4Identity(Out);
    Out[0] = a.x * a.x * t + c;
    Out[1] = a.x * a.y * t - a.z * s;
    Out[2] = a.x * a.z * t + a.y * s;
    Out[4] = a.x * a.y * t + a.z * s;
    Out[5] = a.y * a.y * t + c;
    Out[6] = a.y * a.z * t - a.x * s;
    Out[8] = a.x * a.z * t - a.y * s;
    Out[9] = a.y * a.z * t + a.x * s;
    Out[10] = a.z * a.z * t + c;
}

void M_Mat4RotationX(Mat4& Out, float Angle) {
    M_Mat4Identity(Out);
    Out[5] = Out[10] = M_Cos(Angle);
    Out[6] = M_Sin(Angle);
    Out[9] = -Out[6];
}

void M_Mat4AlignZ(Mat4& Out, const Vec3& Direction) {
    const Vec3 v = Direction;
    if (v == Vec3{0, 0, 1}) {
        M_Mat4Identity(Out);
    } else if (v == Vec3{0, 0, -1}) {
        M_Mat4RotationX(Out, PI);
    } else {
        // A unit vector may be a rounding error too long.
        const double Cosine = std::clamp(v.z, -1.0f, 1.0f);
        M_Mat4AxisAngle(Out, {v.y, -v.x, 0}, static_cast<float>(std::acos(Cosine)));
    }
}

void M_Mat4Compose(const Vec3& Scale, const Vec3& Position, Mat4& Out, const Quat& Rotation) {
    Mat4 Result;
    M_Mat4FromQuat(Result, Rotation);
    for (int Axis = 0; Axis < 3; ++Axis) {
        for (int r = 0; r < 3; ++r) {
            Result[4 * Axis + r] *= Scale[Axis];
        }
        Result[12 + Axis] = Position[Axis];
    }
    Out = Result;
}

void M_Mat4Perspective(Mat4& Out, float FovRadians, float Aspect, float Near, float Far) {
    Out = {};
    Out[5] = static_cast<float>(1 / std::tan(static_cast<double>(FovRadians) / 2));
    Out[0] = Out[5] / Aspect;
    Out[10] = (Near + Far) / (Near - Far);
    Out[14] = 2 * Near * Far / (Near - Far);
    Out[11] = -1;
}

void M_Mat4Ortho(Mat4& Out, float Left, float Right, float Top, float Bottom, float Near, float Far) {
    Out = {};
    Out[0] = 2 / (Right - Left);
    Out[5] = 2 / (Top - Bottom);
    Out[10] = 2 / (Near - Far);
    Out[12] = (Left + Right) / (Left - Right);
    Out[13] = (Top + Bottom) / (Bottom - Top);
    Out[14] = (Near + Far) / (Near - Far);
    Out[15] = 1;
}
