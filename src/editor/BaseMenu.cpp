#include "editor/BaseMenu.h"

#include "editor/MeshMenu.h"
#include "editor/SceneMenu.h"
#include "editor/TerrainMenu.h"
#include "world/GameLevel.h"

enum EBaseOp : INT32 { OP_FILE = 1, OP_SCENE, OP_TERRAIN, OP_MESHES, OP_COUNT = OP_MESHES };

UINT32 SMenu_Base::GetOpCount() {
    return OP_COUNT;
}

void SMenu_Base::GetOpName(GString* Out, INT32 Op) {
    switch (Op) {
    case OP_FILE:
        *Out = "File";
        break;
    case OP_SCENE:
        *Out = "Scene";
        break;
    case OP_TERRAIN:
        *Out = "Terrain";
        break;
    case OP_MESHES:
        *Out = "Meshes";
        break;
    default:
        *Out = NO_OP_NAME;
    }
}

void SMenu_Base::DoOp(INT32 Op) {
    switch (Op) {
    case OP_SCENE:
        Level->PushMenu(new SMenu_Scene(Level));
        break;
    case OP_TERRAIN:
        Level->PushMenu(new SMenu_Terrain(Level));
        break;
    case OP_MESHES:
        Level->PushMenu(new SMenu_Mesh(Level));
        break;
    default:
        break;
    }
}
