// Quat: a rotation as x, y, z and the scalar w last. The default is the identity.
//
// Rotations in this program come from M_Mat4FromQuat alone (Matrix.h), and that matrix turns the other way round than
// most books have it: (0, 0, sin h, cos h) takes the x axis towards minus y. M_QuatToEuler follows the books.
// Units: radians. Cost: inline or a handful of operations; the slerp has one acos, one sin and one cos.
// Bad input: M_QuatNormalized does not guard against a zero quaternion, M_QuatNormalize does.
#pragma once

#include "foundation/Vector.h"

struct Quat {
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 1;
};

inline bool operator==(const Quat& a, const Quat& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

Quat M_QuatNormalized(const Quat& q);

// In place. A quaternion of length zero stays as it is.
void M_QuatNormalize(Quat& q);

// The Hamilton product a times b. Out may be a or b.
void M_QuatMul(Quat& Out, const Quat& a, const Quat& b);

// Along the shorter arc: t = 0 gives From, t = 1 gives To or its negative. Both are unit quaternions.
Quat M_QuatSlerp(Quat From, Quat To, float t);

// (x, y, z) through M_Mat4FromQuat. Out may be v.
void M_QuatRotate(const Quat& q, const Vec3& v, Vec3& Out);

void M_QuatToEuler(const Quat& q, Vec3& Out);

// The rotation by Angles.z round Z, times that by Angles.y round Y, times that by Angles.x round Z again.
Quat M_QuatFromEuler(const Vec3& Angles);
