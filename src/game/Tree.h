// A pine of the wood: an obstacle while it stands near the camera, a target for the rider's sword.
//
// Its registered name is "Tree". Properties: "_POS" alone. All trees share one mesh (Wood.h), scale and rotation.
// Only trees within TREE_BODY_DISTANCE of the eye have a body. A cut tree flies away in a straight line until the level
// ends; it has no body from the first step of its flight on.
// Ownership: the tree owns its client and body and holds one reference of the mesh.
// Cost: an update is a distance test; a cut tree moves through the spatial grid in every step.
#pragma once

#include "scene/MeshClient.h"
#include "world/Entity.h"

class btRigidBody;

constexpr float TREE_BODY_DISTANCE = 400.0f; // world units
constexpr float TREE_FLIGHT_SPEED = 300.0f;  // world units per second

class CTree : public CEntity {
public:
    explicit CTree(const GProperties& Props);
    ~CTree() override;

    void Update(float Delta) override;

    // Sends the tree away from that point and counts it; a tree that is cut already stays as it is.
    void CutBy(const Vec3& From);

    INT32 Active = 0; // within the distance of the camera
    SMeshClient Client;
    INT32 Cut = 0;
    Vec3 CutDir; // unit vector
    btRigidBody* Body = nullptr;

private:
    void SetActive(bool On);
    void RemoveBody();
    void Fly(float Delta);
};
