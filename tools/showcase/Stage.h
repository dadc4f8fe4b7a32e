// What the showcase puts on the slope: models in a row, a wood, the rider with its animations.
//
// A stage owns its clients, meshes and animations and stands in the level that is loaded when it is made; it goes
// before the level. Places are world units; everything stands on the ground.
#pragma once

#include "anim/AnimInstance.h"
#include "scene/MeshClient.h"

// One thing on the slope. Clients hold still in memory, since the grid points to them.
class CStand {
public:
    // The mesh is loaded here and released by the destructor.
    CStand(const char* MeshName, const Vec3& Place, float Scale, float Heading);
    ~CStand();
    CStand(const CStand&) = delete;
    CStand& operator=(const CStand&) = delete;

    SMeshClient Client;
};

// The rider: "idle", "left" and "right" loop, "cut0" and "cut1" are strokes over them.
class CPosedStand : public CStand {
public:
    CPosedStand(const char* MeshName, const Vec3& Place);

    void Play(const char* Name);
    void Step(float Delta) { Anim.Advance(Delta); }

private:
    SAnimInstance Anim;
};

class CStage {
public:
    CStage() = default;
    ~CStage();
    CStage(const CStage&) = delete;
    CStage& operator=(const CStage&) = delete;

    // Beside each other along X, with room for their boxes.
    void AddModels(const GArray<GString>& Names, const Vec3& Centre);

    // Trees at random over the whole slope, as the game sows them.
    void SowTrees(UINT32 Count);
    void AddRider(const Vec3& Place);

    CPosedStand* Rider = nullptr; // null until AddRider

private:
    GArray<CStand*> Stands;
};

// The point of the ground below (x, y) of Place.
Vec3 OnGround(const Vec3& Place);
