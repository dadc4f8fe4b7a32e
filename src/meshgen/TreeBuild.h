// From the rolled numbers of a script line to geometry: trunk, limbs and leaves.
//
// A tree is a chain of tapered tubes. The stack holds the limb that grows now and its ancestors; its bottom is the
// trunk. Space: the tree's, foot at the origin, +Z up where nothing is turned. Lengths in mesh units, angles of the
// fields in degrees, of limbs in radians. Cost: a few dozen operations and the shape's vertices. Bad input: a tube of
// fewer than two sides or without a ring fails an assertion.
#pragma once

#include "meshgen/GenPart.h"

// A limb. Foot, Tip and the quaternions are filled by Finish from the rest.
struct SGenBranch {
    void Finish();

    Vec3 Start; // centre of the foot ring
    Vec3 End;   // centre of the end ring
    float Radius0 = 0;
    float Radius1 = 0;
    Vec3 Rot0; // of the foot ring
    Vec3 Rot1; // of the end ring
    INT32 Sides = 0;
    UINT32 Continued = 0; // a limb has grown from this one's end, so it needs no cap
    Vec4 Foot;            // Start and Radius0
    Vec4 Tip;             // End and Radius1
    Quat Quat0;
    Quat Quat1;
};

// A card before it is built. Dir and Up are unit vectors, extents half sizes.
struct SGenLeaf {
    Vec3 Center;
    Vec3 Dir;
    Vec3 Up;
    float ExtX = 0;
    float ExtY = 0;
};

// The fields of the script's lines with their defaults. Counts are whole numbers.
struct STrunkFields {
    INT32 SubW = 4;
    INT32 SubH = 2;
    Vec3 Rot;
    Vec3 Rot2;
    float Height = 10;
    float Rad = 5;
    float RadScale = 0.8f;
    Vec2 BasePush = {0, 1};
    float NoiseScale = 1;
    Vec3 NoiseExt = {10, 10, 10};
};

// How a limb or leaf is turned against its parent: per axis, RotQ blends from the relative to the absolute rotation.
struct STurnFields {
    Vec3 RotAbs;
    Vec3 RotRel;
    Vec3 RotQ;
};

struct SBranchFields {
    INT32 Repeat = 1;
    INT32 Sub = 0;
    INT32 SubW = 0; // the parent's sides
    INT32 SubH = 2;
    STurnFields Turn;
    float Height = 10;
    float HtScale = 1;
    float HtLerp = 0.1f;
    float HeightQ = 0.5f;
    float RadScale0 = 0.9f;
    float RadScale = 0.8f;
};

struct SLeafFields {
    INT32 Repeat = 1;
    STurnFields Turn;
    float ExtX = 2;
    float ExtY = 2;
    float HeightQ = 0.5f;
    float DepthQ = 0;
};

using SBranchStack = GStack<SGenBranch>;

// Each adds to the part and, but for leaf and cap, pushes its limb. The stack holds at least the trunk for all others.
void GrowTrunk(const STrunkFields& Fields, SGenPart& Wood, SBranchStack& Branches);
void GrowBranch(const SBranchFields& Fields, SGenPart& Wood, SBranchStack& Branches);
void GrowLeaf(const SLeafFields& Fields, SGenPart& Foliage, const SBranchStack& Branches);

// Closes the end of the top limb, unless another one has grown from it.
void CapBranch(SGenPart& Wood, const SBranchStack& Branches);
