#include "game/Tree.h"

#include "game/GameState.h"
#include "game/Wood.h"
#include "graphics/Mesh.h"
#include "physics/Physics.h"
#include "world/GameLevel.h"

#include <btBulletDynamicsCommon.h>

namespace {

constexpr Vec3 TREE_SCALE = {2, 2, 2};
constexpr float CAPSULE_RADIUS = 3.0f;
constexpr float CAPSULE_HEIGHT = 100.0f;

// Above 1, since Bullet multiplies it with the rider's 0.3.
constexpr float CAPSULE_RESTITUTION = 3.0f;

} // namespace

CTree::CTree(const GProperties& Props) : CEntity(Props) {
    Client.Pos = Position;
    Client.Scale = TREE_SCALE;
    Client.HoldState();
    Client.Mesh = MeshLoad(TREE_MESH);
    Client.UpdateBounds(true, true);
    GLevel->AddSpatialClient(&Client);
}

CTree::~CTree() {
    RemoveBody();
    MeshRelease(Client.Mesh);
    GLevel->RemoveSpatialClient(&Client);
}

void CTree::CutBy(const Vec3& From) {
    if (Cut) {
        return;
    }
    CutDir = M_Normalized(Position - From);
    ++GTreesCut;
    Cut = 1;
}

void CTree::RemoveBody() {
    if (Body) {
        PhyRemoveBody(Body);
        Body = nullptr;
    }
}

void CTree::SetActive(bool On) {
    if (On && !Cut) {
        Body = PhyAddCapsuleBody(CAPSULE_RADIUS, CAPSULE_HEIGHT, Client.Pos.x, Client.Pos.y, Client.Pos.z, false);
        Body->setRestitution(CAPSULE_RESTITUTION);
    }
    if (!On) {
        RemoveBody();
    }
    Active = On;
}

void CTree::Fly(float Delta) {
    Position += CutDir * (TREE_FLIGHT_SPEED * Delta);
    Client.Pos = Position;
    Client.HoldState(); // a picture shows the flight in steps
    Client.UpdateBounds(true, false);
    GLevel->MoveSpatialClient(&Client);
    RemoveBody();
    Active = 0;
}

void CTree::Update(float Delta) {
    const bool Near = M_Length(GCamera.Eye - Client.Pos) < TREE_BODY_DISTANCE;
    if (Near != (Active != 0)) {
        SetActive(Near);
    }
    if (Cut) {
        Fly(Delta);
    }
}
