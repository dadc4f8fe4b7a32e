// SMeshClient: an instance of a mesh in the scene, with a transform, perhaps a pose, and the rules that turn it into
// draw records by its distance.
//
// The owner (an entity) sets Mesh and Anim, moves Pos, Rot and Scale, keeps the boxes current with UpdateBounds and
// enters the client with CLevel::AddSpatialClient. All instances of a mesh look alike but for transform, pose and
// flags. Ownership: neither mesh nor animation is owned; both outlive the client or are set to null. Units: world
// space; distances run from GLodCameraPos to the world box, so that a large thing stays whole while the eye is near any
// side of it. Beyond MESH_DRAW_DISTANCE nothing is drawn and no shadow cast. Cost: a record is two short string copies;
// GetWorldMatrices of a skinned mesh is three matrix products per bone. Bad input: a client without a mesh draws
// nothing and is never hit. A part that is not there fails an assertion.
#pragma once

#include "graphics/Mesh.h"
#include "scene/RenderData.h"
#include "scene/Renderable.h"

struct SAnimInstance;

constexpr float MESH_DRAW_DISTANCE = 500.0f;
constexpr float MESH_LOD_DISTANCE = 100.0f; // one level of detail lasts this far

class SMeshClient : public IRenderable {
public:
    SMeshClient() { Kind = CLIENT_MESH; }

    UINT32 GetPartCount(UINT32 Flags) override;
    bool GetRenderData(UINT32 Flags, UINT32 Id, SRenderData* Rd) override;
    void SetupPart(UINT32 Id, UINT32 Program) override;
    void GetBounds(::BBox* Out) override;
    bool TraceRay(const Ray& PickRay, float* HitDistance, UINT32 Flags) override;
    UINT32 GetWorldMatrices(Mat4* Out) override;
    void Update() override;

    // World box from the present transform. CornersOnly boxes the turned local box, which is cheap and loose; without
    // it every point of the mesh is turned. RefreshLocal takes the local box from the mesh first.
    void UpdateBounds(bool CornersOnly, bool RefreshLocal);

    // Scale, then rotation, then translation; Blended lies BlendFactor between the two states.
    void GetMatrix(Mat4& Out, bool Blended) const;

    // Makes the present state the one of the step before, too.
    void HoldState();

    UINT8 RenderFlags = 0;
    SMesh* Mesh = nullptr;
    SAnimInstance* Anim = nullptr;
    ::BBox WorldBox;
    ::BBox LocalBox;
};
