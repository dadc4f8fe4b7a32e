#include "Stage.h"

#include "game/Wood.h"
#include "platform/Platform.h"
#include "terrain/Terrain.h"
#include "world/GameLevel.h"

#include <cmath>

namespace {

const char* const RIDER_MESH = "Data/Models/Rider.mdd";

struct SPlayable {
    const char* File;
    const char* Name;
    INT32 Group;
    UINT32 Slot;
};

constexpr SPlayable RIDER_ANIMS[] = {
    {"Data/Models/Idle.anf", "idle", 1, 0},       {"Data/Models/TurnLeft.anf", "left", 1, 0},
    {"Data/Models/TurnRight.anf", "right", 1, 0}, {"Data/Models/Cut0.anf", "cut0", 2, 1},
    {"Data/Models/Cut1.anf", "cut1", 2, 1},
};

constexpr float FADE_RATE = 2.0f;      // of all changes of the rider's animations: half a second
constexpr float TREE_SCALE = 2.0f;     // as the game draws its trees
constexpr float TREE_DEPTH = 30.0f;    // of a tree's foot below the ground
constexpr float SOWN_PART = 0.8f;      // of the slope's width and length; a margin stays free on each side
constexpr float MODEL_DISTANCE = 8.0f; // between the boxes of models in a row

} // namespace

Vec3 OnGround(const Vec3& Place) {
    const Ray Down = {{Place.x, Place.y, 10000}, {0, 0, -1}};
    const float Distance = GLevel->Terrain->TraceRay(Down, 20000);
    return Distance > 0 ? Down.Origin + Down.Dir * Distance : Place;
}

CStand::CStand(const char* MeshName, const Vec3& Place, float Scale, float Heading) {
    Client.Mesh = MeshLoad(MeshName);
    Client.SetPosition(Place);
    Client.SetScale({Scale, Scale, Scale});
    Client.SetRotation({0, 0, std::sin(Heading / 2), std::cos(Heading / 2)});
    Client.UpdateBounds(true, true);
    GLevel->AddSpatialClient(&Client);
}

CStand::~CStand() {
    GLevel->RemoveSpatialClient(&Client);
    MeshRelease(Client.Mesh);
}

CPosedStand::CPosedStand(const char* MeshName, const Vec3& Place) : CStand(MeshName, Place, 1, 0) {
    for (const SBone& Bone : Client.Mesh->Bones) {
        Anim.BoneNames.Add(Bone.Name);
        Anim.Rotations.Add(Quat());
    }
    for (const SPlayable& Playable : RIDER_ANIMS) {
        Anim.Add(Playable.File, Playable.Name, Playable.Group);
    }
    Client.Anim = &Anim;
    Play("idle");
}

void CPosedStand::Play(const char* Name) {
    for (const SPlayable& Playable : RIDER_ANIMS) {
        if (GString(Playable.Name) == Name) {
            Anim.Play(Playable.Slot, Name, FADE_RATE);
        }
    }
}

CStage::~CStage() {
    delete Rider;
    for (CStand* Stand : Stands) {
        delete Stand;
    }
}

void CStage::AddModels(const GArray<GString>& Names, const Vec3& Centre) {
    const UINT32 First = Stands.count;
    float Width = 0;
    for (const GString& Name : Names) {
        Stands.Add(new CStand(Name.CStr(), Centre, 1, 0));
        const BBox& Box = Stands[Stands.count - 1]->Client.WorldBox;
        Width += Box.Max.x - Box.Min.x + MODEL_DISTANCE;
    }
    float Left = Centre.x - (Width - MODEL_DISTANCE) / 2;
    for (UINT32 i = First; i < Stands.count; ++i) {
        SMeshClient& Client = Stands[i]->Client;
        const float Offset = Left - Client.WorldBox.Min.x;
        Left += Client.WorldBox.Max.x - Client.WorldBox.Min.x + MODEL_DISTANCE;
        Client.SetPosition(OnGround(Centre + Vec3{Offset, 0, 0}));
        GLevel->RemoveSpatialClient(&Client);
        Client.UpdateBounds(true, false);
        GLevel->AddSpatialClient(&Client);
    }
}

void CStage::SowTrees(UINT32 Count) {
    const Vec3 Extents = GLevel->Terrain->Extents;
    for (UINT32 i = 0; i < Count; ++i) {
        const float x = (2 * PlatRandUnit() - 1) * SOWN_PART * Extents.x;
        const float y = (2 * PlatRandUnit() - 1) * SOWN_PART * Extents.y;
        Stands.Add(new CStand(TREE_MESH, OnGround({x, y, 0}) - Vec3{0, 0, TREE_DEPTH}, TREE_SCALE, 0));
    }
}

void CStage::AddRider(const Vec3& Place) {
    Rider = new CPosedStand(RIDER_MESH, OnGround(Place));
}
