#include "meshgen/TreeBuild.h"

#include "foundation/Matrix.h"

#include <cmath>

namespace {

float Radians(float Degrees) {
    return Degrees / 180.0f * PI;
}

Vec3 Radians(const Vec3& Degrees) {
    return {Radians(Degrees.x), Radians(Degrees.y), Radians(Degrees.z)};
}

Vec3 Turned(const Vec3& Rotation, const Vec3& v) {
    Mat4 Matrix;
    M_Mat4FromQuat(Matrix, M_QuatFromEuler(Rotation));
    Vec3 Out;
    M_Mat4MulDir(Matrix, v, Out);
    return Out;
}

Vec3 Direction(const Vec3& Rotation) {
    return Turned(Rotation, {0, 0, 1});
}

// Blended on the circle, so that it takes the short way round.
float TurnAxis(float Relative, float Absolute, float Part) {
    const Vec2 Blend =
        M_CircleSlerp({std::cos(Relative), std::sin(Relative)}, {std::cos(Absolute), std::sin(Absolute)}, Part);
    return std::atan2(Blend.y, Blend.x);
}

Vec3 TurnFrom(const Vec3& Rotation, const STurnFields& Turn) {
    Vec3 Out;
    for (int Axis = 0; Axis < 3; ++Axis) {
        Out[Axis] = TurnAxis(Rotation[Axis] + Radians(Turn.RotRel[Axis]), Radians(Turn.RotAbs[Axis]), Turn.RotQ[Axis]);
    }
    return Out;
}

Vec3 PointAlong(const SGenBranch& Limb, float Part) {
    return Limb.Start + (Limb.End - Limb.Start) * Part;
}

} // namespace

void SGenBranch::Finish() {
    Quat0 = M_QuatFromEuler(Rot0);
    Quat1 = M_QuatFromEuler(Rot1);
    Foot = {Start.x, Start.y, Start.z, Radius0};
    Tip = {End.x, End.y, End.z, Radius1};
}

void GrowTrunk(const STrunkFields& Fields, SGenPart& Wood, SBranchStack& Branches) {
    SGenBranch Trunk;
    Trunk.Radius0 = Fields.Rad;
    Trunk.Radius1 = Fields.Rad * Fields.RadScale;
    Trunk.Rot0 = Radians(Fields.Rot);
    Trunk.Rot1 = Radians(Fields.Rot2);
    Trunk.Sides = Fields.SubW;
    Trunk.End = Direction(Trunk.Rot0) * Fields.Height;
    Trunk.Finish();
    Branches.Push(Trunk);
    Wood.AddTube(Trunk.Foot, Trunk.Quat0, Trunk.Tip, Trunk.Quat1, Fields.SubW, Fields.SubH);
    // Noise moves vertices one by one: the corners that rings share must be one while it does.
    Wood.Weld(false);
    Wood.Deform({}, Fields.NoiseExt, Fields.BasePush, {}, Fields.NoiseScale);
    Wood.Unweld();
}

void GrowBranch(const SBranchFields& Fields, SGenPart& Wood, SBranchStack& Branches) {
    SGenBranch& Parent = Branches.Top();
    SGenBranch Limb;
    Limb.Start = Parent.End;
    Limb.Radius0 = Parent.Radius1;
    Limb.Rot0 = Parent.Rot1;
    Limb.Sides = Parent.Sides;
    const Vec3 Rotation = TurnFrom(Limb.Rot0, Fields.Turn);
    Limb.Rot1 = Rotation;
    Limb.Radius1 = Limb.Radius0 * Fields.RadScale;
    const float Scaled = M_Length(Parent.Start - Parent.End) * Fields.HtScale;
    const float Length = Fields.Height + (Scaled - Fields.Height) * Fields.HtLerp;
    if (Fields.Sub) {
        Limb.Radius0 *= Fields.RadScale0;
        Limb.Sides = Fields.SubW;
        Limb.Start = PointAlong(Parent, Fields.HeightQ);
        Limb.Rot0 = Rotation;
    } else {
        Parent.Continued = 1;
    }
    Limb.End = Limb.Start + Direction(Rotation) * Length;
    Limb.Finish();
    Branches.Push(Limb);
    Wood.AddTube(Limb.Foot, Limb.Quat0, Limb.Tip, Limb.Quat1, Limb.Sides, Fields.SubH);
}

void CapBranch(SGenPart& Wood, const SBranchStack& Branches) {
    const SGenBranch& Limb = Branches.Top();
    if (!Limb.Continued) {
        Wood.AddCap(Limb.Tip, Limb.Quat1, Limb.Sides);
    }
}

void GrowLeaf(const SLeafFields& Fields, SGenPart& Foliage, const SBranchStack& Branches) {
    const SGenBranch& Parent = Branches.Top();
    const Vec3 Rotation = TurnFrom(Parent.Rot1, Fields.Turn);
    SGenLeaf Leaf;
    Leaf.Dir = -Direction(Rotation);
    Leaf.Up = Turned(Rotation, {0, 1, 0});
    Leaf.ExtX = Fields.ExtX;
    Leaf.ExtY = Fields.ExtY;
    Leaf.Center = PointAlong(Parent, Fields.HeightQ) - Leaf.Dir * (Fields.ExtY * Fields.DepthQ);
    Foliage.AddLeaf(Leaf.Center, Leaf.Dir, Leaf.Up, Leaf.ExtX, Leaf.ExtY);
}
