// Mat4: sixteen floats, column-major as OpenGL has it: the element of row r and column c is at index 4 * c + r. Vectors
// are columns, so M * p transforms a point, the translation stands at 12, 13 and 14, and a * b applies b first.
//
// A default matrix is all zero; M_Mat4Identity fills in the identity. What a matrix holds goes to the GPU unchanged.
// Units: radians. Cost: a product is 64 multiplications, an inverse about 200; nothing allocates.
// Out arguments may be the same object as an input in every function here.
// Bad input: a singular matrix has no inverse, see M_Mat4Inverse; a degenerate view volume gives infinities.
#pragma once

#include "foundation/Quaternion.h"
#include "foundation/Vector.h"

struct Mat4 {
    float M[16] = {};

    float& operator[](int Index) { return M[Index]; }
    float operator[](int Index) const { return M[Index]; }
};

void M_Mat4Identity(Mat4& Out);
void M_Mat4Translation(Mat4& Out, const Vec3& Offset);
void M_Mat4Mul(Mat4& Out, const Mat4& a, const Mat4& b);
float M_Mat4Determinant(const Mat4& m);

// Inverts any matrix, not only rigid ones. The result is the determinant; if that is exactly zero, Out stays as it is.
float M_Mat4Inverse(const Mat4& m, Mat4& Out);

// w is 1 for a point and 0 for a direction.
void M_Mat4MulVec4(const Mat4& m, const Vec4& In, Vec4& Out);
void M_Mat4MulDir(const Mat4& m, const Vec3& In, Vec3& Out);
void M_Mat4MulPoint(const Mat4& m, const Vec3& In, Vec3& Out);

// The transpose of what most books have: see Quaternion.h. M_Mat4AxisAngle turns in the same sense, M_Mat4RotationX in
// the opposite one.
void M_Mat4FromQuat(Mat4& Out, const Quat& q);
void M_Mat4AxisAngle(Mat4& Out, const Vec3& Axis, float Angle);
void M_Mat4RotationX(Mat4& Out, float Angle);

// The matrix that turns +Z into the unit vector Direction.
void M_Mat4AlignZ(Mat4& Out, const Vec3& Direction);

// Scales first, then rotates, then moves: the world matrix of an entity or a mesh.
void M_Mat4Compose(const Vec3& Scale, const Vec3& Position, Mat4& Out, const Quat& Rotation);

// Fov is the full vertical angle.
void M_Mat4Perspective(Mat4& Out, float FovRadians, float Aspect, float Near, float Far);

// Mind the order: (0, 1024, 0, 576, -1, 1) puts y = 0 at the upper edge of the screen.
void M_Mat4Ortho(Mat4& Out, float Left, float Right, float Top, float Bottom, float Near, float Far);
