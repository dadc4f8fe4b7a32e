#include "game/SlopeRush.h"

#include "graphics/Mesh.h"
#include "graphics/ShaderLib.h"
#include "meshgen/TreeMeshGen.h"
#include "scene/DrawHelpers.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <cstdio>

namespace {

const char* const FIRST_LEVEL = "Data/Levels/Level1.wlm";
const char* const TREE_SCRIPT = "Data/Generators/PineTree0.mgn";

void DeleteLevel() {
    delete GLevel;
    GLevel = nullptr;
}

void LoadLevel(const char* Path) {
    DeleteLevel();
    GLevel = new CLevel;
    GLevel->LoadSourceLevel(Path);
}

// Lays the level's two-dimensional layer over what stands in the window.
void DrawOverlay() {
    glEnable(GL_BLEND);
    const UINT32 Program = ShaderGetProgram("FSQuad", "FSQuad");
    glUseProgram(Program);
    ShaderSetUniform1i(0, Program, "FSTex");
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, GLevel->OverlayRT.ColorTex);
    DrawQuad(-1, 1, 1, -1, 0);
    glDisable(GL_BLEND);
}

} // namespace

void GrowTrees() {
    STreeMeshGen Generator;
    Generator.Generate(TREE_SCRIPT);
    MeshAdd(TREE_MESH, Generator.Mesh);
}

void ReleaseTrees() {
    SMesh* Tree = MeshLoad(TREE_MESH);
    MeshRelease(Tree);
    MeshRelease(Tree);
}

UINT32 CreateGame() {
    std::snprintf(GameName, GAME_NAME_SIZE, "SlopeRush");
    GGame = new SlopeRush;
    return 1;
}

void SlopeRush::Init() {
    GrowTrees();
    LoadLevel(FIRST_LEVEL);
}

void SlopeRush::Free() {
    DeleteLevel();
    ReleaseTrees();
}

void SlopeRush::Update(float, float Delta) {
    GLevel->Update(Delta);
    GLevel->OverlayRT.Bind();
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    GLevel->OverlayRT.Unbind();
}

void SlopeRush::Render(float BlendDelta) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    GLevel->Render(BlendDelta);
    DrawOverlay();
}
