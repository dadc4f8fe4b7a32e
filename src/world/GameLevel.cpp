#include "world/GameLevel.h"

#include "foundation/Diagnostics.h"
#include "foundation/Scan.h"
#include "graphics/Mesh.h"
#include "graphics/MeshFile.h"
#include "physics/Physics.h"
#include "platform/Platform.h"
#include "scene/Renderable.h"
#include "terrain/Terrain.h"
#include "world/FPSCameraEntity.h"
#include "world/LevelFile.h"
#include "world/MeshEntity.h"

#include <algorithm>
#include <btBulletDynamicsCommon.h>
#include <cstdio>

CLevel* GLevel = nullptr;
btRigidBody* GEditorBody = nullptr;

namespace {

const char* const TEMPORARY_LEVEL = "Data/Levels/_TmpSlopeRush.wlm";

// Along each axis of the spatial grid.
constexpr float GRID_CELLS = 200;

constexpr float EDITOR_BODY_RADIUS = 4.0f;
constexpr Vec3 EDITOR_BODY_START = {0, 0, 400};

// Here and not beside the classes, since this file is always linked.
TEntityRegistration<CFPSCameraEntity> FPSCameraRegistration("FPSCamera");
TEntityRegistration<CMeshEntity> StaticMeshRegistration("StaticMesh");

} // namespace

CLevel::CLevel() {
    InitDrawing();
    Grid = new SSpatialGrid;
    GEditorBody =
        PhyAddCapsuleBody(EDITOR_BODY_RADIUS, 0, EDITOR_BODY_START.x, EDITOR_BODY_START.y, EDITOR_BODY_START.z, true);
    // Entering the world gave the body the world's own gravity; a camera hangs where it is put.
    GEditorBody->setGravity(btVector3(0, 0, 0));
    InitMenus();
}

CLevel::~CLevel() {
    DestroyEntities();
    PhyRemoveBody(GEditorBody);
    GEditorBody = nullptr;
    FreeSun();
    Sky.Free();
    if (Terrain) {
        Terrain->Free();
        delete Terrain;
    }
    FreeMenus();
    delete Grid;
    FreeTargets();
}

UINT32 CLevel::LoadSourceLevel(const char* Path) {
    GString Text;
    if (!F_ReadTextFile(Path, Text)) {
        FatalError("CLevel::LoadSourceLevel - File read error - %s\n", Path);
    }
    GString BadWord;
    switch (ReadLevelText(Text, Params, EntityDefs, BadWord)) {
    case ELevelText::Good:
        break;
    case ELevelText::WrongType:
        FatalError("CLevel::LoadSourceLevel - Wrong file type - %s\n", Path);
    case ELevelText::WrongDefinition:
        FatalError("CLevel::LoadLevel - Wrong definition type %s in %s\n", BadWord.CStr(), Path);
    }
    Build(Path);
    return 1;
}

// A "geomesh" line places nothing: its descriptor is read, so that what is wrong with it is told, and released at once.
void CLevel::TryGeoMeshes() const {
    for (const GString& Descriptor : Params.GeoMeshes) {
        SMesh Temporary;
        MeshLoadDescriptor(Descriptor.CStr(), Temporary);
    }
}

void CLevel::Build(const char* Path) {
    PopMenusToBase();
    TryGeoMeshes();
    const float Reach = std::max({Params.SizeX, Params.SizeY, Params.SizeZ});
    Grid->Init({{-Reach, -Reach, -Reach}, {Reach, Reach, Reach}}, {GRID_CELLS, GRID_CELLS, GRID_CELLS});
    Sky.Load(Params.SkyFile);
    if (!Terrain) {
        Terrain = new STerrain;
    }
    Terrain->Extents = {Params.SizeX, Params.SizeY, Params.SizeZ};
    Terrain->Load(Params.TerrainFile.CStr());
    for (const SEntityDef& Def : EntityDefs) {
        CEntity* Entity = CreateEntity(Def.ClassName.CStr(), Def.Properties);
        if (Entity) {
            AddEntity(Entity);
        } else {
            LogPrintf("Entity class \"%s\" in %s is unknown, the line is skipped\n", Def.ClassName.CStr(), Path);
        }
    }
}

void CLevel::Update(float Delta) {
    if (EditMode) {
        UpdateEditor(Delta);
    } else {
        PhyStep(Delta);
    }
    for (UINT32 i = 0; i < Entities.count; ++i) {
        Entities[i]->Update(Delta);
    }
    for (CEntity* Dead : DeadEntities) {
        delete Dead;
    }
    Entities = ActiveEntities;
    DeadEntities.Clear();
}

void CLevel::AddEntity(CEntity* Entity) {
    Entities.Add(Entity);
    ActiveEntities.Add(Entity);
}

void CLevel::RemoveEntity(CEntity* Entity) {
    for (UINT32 i = 0; i < ActiveEntities.count; ++i) {
        if (ActiveEntities[i] == Entity) {
            ActiveEntities[i] = ActiveEntities[ActiveEntities.count - 1];
            ActiveEntities.Resize(ActiveEntities.count - 1);
            DeadEntities.Add(Entity);
            return;
        }
    }
}

void CLevel::DestroyEntities() {
    DeadEntities = Entities;
    ActiveEntities.Clear();
    for (CEntity* Dead : DeadEntities) {
        delete Dead;
    }
    Entities = ActiveEntities;
    DeadEntities.Clear();
}

void CLevel::AddSpatialClient(IRenderable* Client) {
    Client->GetBounds(&Client->BBox);
    AddClient(Grid, Client);
    SpatialClients.Append(Client);
}

void CLevel::RemoveSpatialClient(IRenderable* Client) {
    DeselectGone(Client);
    RemoveClient(Grid, Client);
    for (auto* Node = SpatialClients.first; Node; Node = Node->next) {
        if (Node->obj == Client) {
            SpatialClients.Unlink(Node);
            return;
        }
    }
}

void CLevel::MoveSpatialClient(IRenderable* Client) {
    BBox Bounds;
    Client->GetBounds(&Bounds);
    if (Bounds.Min == Client->BBox.Min && Bounds.Max == Client->BBox.Max) {
        return;
    }
    Client->BBox = Bounds;
    RemoveClient(Grid, Client);
    AddClient(Grid, Client);
}

UINT32 CLevel::TraceClients(const Ray& PickRay) {
    PickHits.Hits.Clear();
    PickHits.StepAllowance = 0;
    ++GSpatialStamp;
    return TraceGrid(Grid, PickRay, &PickHits);
}

void CLevel::CollectEntityDefs() {
    EntityDefs.Clear();
    for (CEntity* Entity : Entities) {
        SEntityDef Def;
        Def.ClassName = Entity->Class->Name;
        Def.Position = Entity->Position;
        Entity->SaveProperties(Def.Properties);
        EntityDefs.Add(Def);
    }
}

UINT32 CLevel::SaveTemporaryLevel() {
    CollectEntityDefs();
    GString Text;
    WriteLevelText(Text, Params, EntityDefs);
    FILE* File = PlatOpenFile(TEMPORARY_LEVEL, "w");
    if (!File) {
        return 0;
    }
    std::fputs(Text.CStr(), File);
    std::fclose(File);
    return 1;
}
