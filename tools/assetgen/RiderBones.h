// The rider's skeleton, as its mesh and its movements share it.
//
// Space: mesh space, +Z up, the rider goes towards -Y. A bone's rest matrix is a mere translation to its joint, so a
// rotation of a bone turns about mesh axes through the joint.
#pragma once

#include "foundation/Types.h"
#include "foundation/Vector.h"

enum ERiderBone : UINT8 {
    BONE_ROOT,
    BONE_BOARD,
    BONE_HIPS,
    BONE_SPINE,
    BONE_CHEST,
    BONE_NECK,
    BONE_HEAD,
    BONE_ARM_L,
    BONE_FOREARM_L,
    BONE_HAND_L,
    BONE_ARM_R,
    BONE_FOREARM_R,
    BONE_HAND_R,
    BONE_SWORD,
    BONE_THIGH_L,
    BONE_SHIN_L,
    BONE_FOOT_L,
    BONE_THIGH_R,
    BONE_SHIN_R,
    BONE_FOOT_R,
    BONE_SCARF_1,
    BONE_SCARF_2,
    BONE_SCARF_3,
    RIDER_BONES,
};

struct SRiderBone {
    const char* Name;
    const char* Parent; // empty for the root
    Vec3 Joint;
};

// The left side is the front one: the rider stands across the board.
constexpr SRiderBone RIDER_SKELETON[RIDER_BONES] = {
    {"Root", "", {0, 0, 0}},
    {"Board", "Root", {0, 0, 0.4f}},
    {"Hips", "Root", {0.5f, 0.1f, 4.9f}},
    {"Spine", "Hips", {0.3f, 0.05f, 6.0f}},
    {"Chest", "Spine", {-0.1f, -0.1f, 7.3f}},
    {"Neck", "Chest", {-0.45f, -0.45f, 9.2f}},
    {"Head", "Neck", {-0.5f, -0.6f, 9.8f}},
    {"ArmL", "Chest", {0.95f, -1.75f, 8.6f}},
    {"ForearmL", "ArmL", {1.75f, -3.1f, 7.4f}},
    {"HandL", "ForearmL", {1.35f, -4.6f, 7.1f}},
    {"ArmR", "Chest", {-1.55f, 0.95f, 8.6f}},
    {"ForearmR", "ArmR", {-2.95f, 1.85f, 7.6f}},
    {"HandR", "ForearmR", {-4.05f, 0.75f, 7.2f}},
    {"Sword", "HandR", {-4.25f, 0.55f, 7.25f}},
    {"ThighL", "Hips", {0.45f, -0.7f, 4.7f}},
    {"ShinL", "ThighL", {-0.9f, -1.95f, 2.9f}},
    {"FootL", "ShinL", {0.15f, -2.5f, 0.9f}},
    {"ThighR", "Hips", {0.45f, 0.9f, 4.7f}},
    {"ShinR", "ThighR", {-0.9f, 2.15f, 2.9f}},
    {"FootR", "ShinR", {0.15f, 2.6f, 0.9f}},
    {"Scarf1", "Neck", {0.1f, 0.1f, 9.2f}},
    {"Scarf2", "Scarf1", {0.5f, 1.6f, 9.3f}},
    {"Scarf3", "Scarf2", {0.7f, 3.1f, 9.1f}},
};
