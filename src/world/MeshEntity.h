// A piece of scenery: a mesh that stands where the level file puts it and that the editor can move.
//
// Its registered name is "StaticMesh". Properties: "MeshName" (descriptor path, or the name of a generated mesh),
// "Position" and "Scale" (x;y;z), "Rotation" (a quaternion, x;y;z;w). Without "MeshName" nothing is seen.
// In a running game it costs no time. While the level's EditMode is set, Update takes over what was written into Client
// since the last step, and moves it in the spatial grid.
// Ownership: the entity owns its client and holds one reference of the mesh.
#pragma once

#include "scene/MeshClient.h"
#include "world/Entity.h"

class CMeshEntity : public CEntity {
public:
    explicit CMeshEntity(const GProperties& Props);
    ~CMeshEntity() override;

    void Update(float Delta) override;
    void Serialize(FArchive& Ar) override;
    void SaveProperties(GProperties& Props) override;

    SMeshClient Client;

private:
    void ReadProperty(const GString& Key, const GString& Value);
    bool TakeOverChange();

    // What the bounds were last built from.
    Vec3 TakenPos;
    Vec3 TakenScale;
    Quat TakenRot;
};
