#include "scene/MeshClient.h"

#include "anim/AnimInstance.h"
#include "foundation/Camera.h"
#include "foundation/Diagnostics.h"
#include "graphics/ShaderLib.h"

#include <algorithm>

namespace {

const Quat REST_POSE[MESH_MAX_BONES] = {};

UINT16 RecordDepth(float Distance) {
    return static_cast<UINT16>(RENDER_DEPTH_MAX * std::clamp(Distance / GCamera.Far, 0.0f, 1.0f));
}

UINT32 LodAt(float Distance) {
    return std::min(static_cast<UINT32>(Distance / MESH_LOD_DISTANCE), MESH_LOD_COUNT - 1);
}

UINT32 SlotTexture(const SMeshPart& Part, UINT32 Slot) {
    return Slot < Part.Textures.count ? Part.Textures[Slot].Texture : 0;
}

void FillSkin(SRenderData& Rd, const SMesh& Mesh, const SMeshPart& Part) {
    constexpr UINT32 STRIDE = sizeof(SSkinVertex);
    Rd.SkinStride = STRIDE;
    Rd.SkinBuffer = Mesh.Animated ? Mesh.SkinVB : 0;
    Rd.SkinWeightOffset = Mesh.Animated ? STRIDE * Part.VertexStart : NO_OFFSET;
    Rd.SkinIndexOffset =
        Mesh.Animated ? Rd.SkinWeightOffset + static_cast<UINT32>(offsetof(SSkinVertex, BoneIndices)) : NO_OFFSET;
}

void FillVertices(SRenderData& Rd, const SMesh& Mesh, const SMeshPart& Part) {
    constexpr UINT32 STRIDE = sizeof(SMeshVertex);
    Rd.Stride = STRIDE;
    Rd.VertexBuffer = Mesh.VB;
    Rd.PositionOffset = STRIDE * Part.VertexStart;
    Rd.TexCoordOffset = Rd.PositionOffset + static_cast<UINT32>(offsetof(SMeshVertex, UV));
    Rd.NormalOffset = Rd.PositionOffset + static_cast<UINT32>(offsetof(SMeshVertex, Normal));
    Rd.TangentOffset = Rd.PositionOffset + static_cast<UINT32>(offsetof(SMeshVertex, Tangent));
    Rd.ColorOffset = NO_OFFSET;
}

} // namespace

UINT32 SMeshClient::GetPartCount(UINT32) {
    const bool Near = M_BBoxDistance(WorldBox, GLodCameraPos) <= MESH_DRAW_DISTANCE;
    return Mesh && Near ? Mesh->GetPartCount() : 0;
}

bool SMeshClient::GetRenderData(UINT32, UINT32 Id, SRenderData* Rd) {
    G_ASSERT(Id < Mesh->GetPartCount());
    const float Distance = M_BBoxDistance(WorldBox, GLodCameraPos);
    if (Distance > MESH_DRAW_DISTANCE) {
        return false;
    }
    const SMeshPart& Part = Mesh->Parts[Id];
    const UINT32 Lod = LodAt(Distance);
    Rd->Flags = RenderFlags;
    // An address leaves the upper 16 bits free, so no bit of it is lost and no part of another mesh has this number.
    Rd->StateId = (reinterpret_cast<UINT64>(Mesh) << 16) + Id + 1;
    Rd->PS = Part.PS;
    Rd->VS = Part.VS;
    FillVertices(*Rd, *Mesh, Part);
    FillSkin(*Rd, *Mesh, Part);
    Rd->IndexBuffer = Mesh->IB[Lod];
    Rd->IndexCount = 3 * Part.TriangleCount[Lod];
    Rd->IndexOffset = static_cast<UINT32>(sizeof(UINT32)) * Part.IBOffset[Lod];
    Rd->Texture0 = SlotTexture(Part, 0);
    Rd->Texture1 = SlotTexture(Part, 1);
    Rd->Depth = RecordDepth(Distance);
    return true;
}

void SMeshClient::SetupPart(UINT32 Id, UINT32 Program) {
    const GArray<SMeshTexture>& Slots = Mesh->Parts[Id].Textures;
    for (UINT32 i = 0; i < Slots.count; ++i) {
        ShaderSetUniform1i(static_cast<INT32>(i), Program, Slots[i].Name);
    }
    ShaderSetUniform3fv(&GCamera.Eye.x, Program, "CameraPos");
    const float Clip[4] = {GClipPlane.Normal.x, GClipPlane.Normal.y, GClipPlane.Normal.z, GClipPlane.D};
    ShaderSetUniform4fv(Clip, Program, "ClipPlane");
    ShaderSendFog(Program);
    ShaderSendLight(Program);
}

void SMeshClient::GetBounds(::BBox* Out) {
    *Out = WorldBox;
}

bool SMeshClient::TraceRay(const Ray& PickRay, float* HitDistance, UINT32) {
    if (!Mesh) {
        return false;
    }
    Mat4 World;
    GetMatrix(World, false);
    const float Distance = Mesh->TraceRay(PickRay, World);
    if (Distance < 0) {
        return false;
    }
    if (HitDistance) {
        *HitDistance = Distance;
    }
    return true;
}

UINT32 SMeshClient::GetWorldMatrices(Mat4* Out) {
    if (!Mesh->Animated) {
        GetMatrix(Out[0], true);
        return 1;
    }
    Mat4 World;
    GetMatrix(World, true);
    const bool Posed = Anim && Anim->Rotations.count >= Mesh->Bones.count;
    Mesh->Bones[0].Evaluate(Out, World, Posed ? Anim->Rotations.Data : REST_POSE);
    return Mesh->Bones.count;
}

void SMeshClient::Update() {
    if (Anim) {
        Anim->Evaluate(BlendFactor);
    }
}

void SMeshClient::UpdateBounds(bool CornersOnly, bool RefreshLocal) {
    if (RefreshLocal && Mesh) {
        Mesh->GetBounds(LocalBox);
    }
    Mat4 World;
    GetMatrix(World, false);
    if (CornersOnly || !Mesh || !Mesh->GetBounds(WorldBox, World)) {
        M_BBoxTransform(LocalBox, World, WorldBox);
    }
}

void SMeshClient::GetMatrix(Mat4& Out, bool Blended) const {
    if (!Blended) {
        M_Mat4Compose(Scale, Pos, Out, Rot);
        return;
    }
    M_Mat4Compose(M_Lerp3(Scale, PrevScale, BlendFactor), M_Lerp3(Pos, PrevPos, BlendFactor), Out,
                  M_QuatSlerp(PrevRot, Rot, BlendFactor));
}

void SMeshClient::HoldState() {
    PrevPos = Pos;
    PrevRot = Rot;
    PrevScale = Scale;
}
