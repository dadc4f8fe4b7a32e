// IRenderable: a spatial client with a transform that the frame pipeline draws without knowing what it is.
//
// Two states are kept, that of the last fixed step and that of the one before; the picture lies BlendFactor between
// them. Whoever moves an object smoothly copies Pos to PrevPos and so on at the start of a step; the setters write both
// states, so that an object jumps without blending from its old place. None of them moves the client in the spatial
// index: that takes GetBounds, RemoveClient and AddClient.
//
// Call order per picture: GetPartCount, then GetRenderData for each part, Update for each record that was accepted, and
// for each draw GetWorldMatrices and SetupPart on the bound program. Flags are 1 in a shadow pass, else 0.
//
// Ownership: the index and the pipeline keep only pointers, and those only while the client is registered.
// Units: world space; rotations are unit quaternions. Accessors are as cheap as a copy.
#pragma once

#include "scene/SpatialGrid.h"

struct SRenderData;

class IRenderable : public SSpatialClient {
public:
    virtual Vec3* GetPosition(Vec3* Out);
    virtual void SetPosition(const Vec3& NewPos);
    virtual Quat* GetRotation(Quat* Out);
    virtual void SetRotation(const Quat& NewRot);
    virtual Vec3* GetScale(Vec3* Out);
    virtual void SetScale(const Vec3& NewScale);

    // How many parts to draw under these flags.
    virtual UINT32 GetPartCount(UINT32 Flags) = 0;

    // Fills the draw record of part Id, every field but the pipeline's own: an older record may stand in it. False
    // means that the part is not drawn.
    virtual bool GetRenderData(UINT32 Flags, UINT32 Id, SRenderData* Rd) = 0;

    // The part's samplers and the uniforms of the pass, on a bound program.
    virtual void SetupPart(UINT32 Id, UINT32 Program) = 0;

    // The world box for the spatial index.
    virtual void GetBounds(::BBox* Out) = 0;

    // True on a hit; HitDistance may be null and is written only then.
    virtual bool TraceRay(const Ray& PickRay, float* HitDistance, UINT32 Flags) = 0;

    // One matrix or a bone palette of at most 64; returns how many.
    virtual UINT32 GetWorldMatrices(Mat4* Out) = 0;

    // Called once for each accepted record, after BlendFactor was set.
    virtual void Update() {}

    virtual ~IRenderable() = default;

    float BlendFactor = 0;            // from the step before (0) to the last (1), written by the frame pipeline
    UINT64 RenderStamp = STAMP_NEVER; // written by QueryMeshClients
    Vec3 PrevPos;
    Vec3 Pos;
    Quat PrevRot;
    Quat Rot;
    Vec3 PrevScale{1, 1, 1};
    Vec3 Scale{1, 1, 1};
};
