#include "world/MeshEntity.h"

#include "foundation/GArchive.h"
#include "foundation/Scan.h"
#include "world/GameLevel.h"

static void SerializeVec3(FArchive& Ar, Vec3& v) {
    Ar << v.x << v.y << v.z;
}

CMeshEntity::CMeshEntity(const GProperties& Props) : CEntity(Props) {
    Client.Pos = Position;
    for (GProperties::Iterator It(Props); It.Valid(); It.Next()) {
        ReadProperty(It.Key(), It.Value());
    }
    Client.HoldState();
    TakenPos = Client.Pos;
    TakenScale = Client.Scale;
    TakenRot = Client.Rot;
    Client.UpdateBounds(true, false);
    GLevel->AddSpatialClient(&Client);
}

CMeshEntity::~CMeshEntity() {
    GLevel->RemoveSpatialClient(&Client);
    if (Client.Mesh) {
        MeshRelease(Client.Mesh);
    }
}

void CMeshEntity::ReadProperty(const GString& Key, const GString& Value) {
    INT32 Pos = 0;
    if (Key == "MeshName") {
        Client.Mesh = MeshLoad(Value);
        Client.Mesh->GetBounds(Client.LocalBox);
    } else if (Key == "Position") {
        Position = F_ReadVec3(Pos, Value);
        Client.Pos = Position;
    } else if (Key == "Scale") {
        Client.Scale = F_ReadVec3(Pos, Value);
    } else if (Key == "Rotation") {
        const Vec4 Rotation = F_ReadVec4(Pos, Value);
        Client.Rot = {Rotation.x, Rotation.y, Rotation.z, Rotation.w};
    }
}

// One kind of change a step: what else was written waits for the next ones. The client's own state of the step before
// does not tell, as its setters write that too.
bool CMeshEntity::TakeOverChange() {
    if (Client.Pos != TakenPos) {
        TakenPos = Client.PrevPos = Client.Pos;
    } else if (Client.Scale != TakenScale) {
        TakenScale = Client.PrevScale = Client.Scale;
    } else if (!(Client.Rot == TakenRot)) {
        TakenRot = Client.PrevRot = Client.Rot;
    } else {
        return false;
    }
    return true;
}

void CMeshEntity::Update(float) {
    if (!GLevel->EditMode) {
        return;
    }
    if (TakeOverChange()) {
        Client.UpdateBounds(false, false);
        GLevel->MoveSpatialClient(&Client);
    }
    Position = Client.Pos;
}

void CMeshEntity::Serialize(FArchive& Ar) {
    CEntity::Serialize(Ar);
    SerializeVec3(Ar, Client.Pos);
    SerializeVec3(Ar, Client.Scale);
    Ar << Client.Rot.x << Client.Rot.y << Client.Rot.z << Client.Rot.w;
}

void CMeshEntity::SaveProperties(GProperties& Props) {
    constexpr UINT32 VEC3_LENGTH = 127;
    constexpr UINT32 VEC4_LENGTH = 191;
    CEntity::SaveProperties(Props);
    Props["MeshName"] = Client.Mesh ? Client.Mesh->Name : GString();
    Props["Position"].Format(VEC3_LENGTH, "%f;%f;%f", Client.Pos.x, Client.Pos.y, Client.Pos.z);
    Props["Scale"].Format(VEC3_LENGTH, "%f;%f;%f", Client.Scale.x, Client.Scale.y, Client.Scale.z);
    Props["Rotation"].Format(VEC4_LENGTH, "%f;%f;%f;%f", Client.Rot.x, Client.Rot.y, Client.Rot.z, Client.Rot.w);
}
