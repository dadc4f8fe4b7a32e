#include "game/SlopeRush.h"

#include "game/GameState.h"
#include "game/Rider.h"
#include "game/Screens.h"
#include "game/Wood.h"
#include "graphics/ShaderLib.h"
#include "input/Input.h"
#include "scene/DrawHelpers.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <cstdio>
#include <cstring>

namespace {

// A level ends where the rider passes this part of its half length.
constexpr float END_OF_SLOPE = -0.8f;

bool WentDown(UINT32 Key) {
    return GKeys[Key] && !GLastKeys[Key];
}

bool WantsSave() {
    return (GKeys[SDLK_LCTRL] || GLastKeys[SDLK_LCTRL]) && WentDown(SDLK_s);
}

const CRider* FindRider() {
    for (const CEntity* Entity : GLevel->Entities) {
        if (std::strcmp(Entity->Class->Name, "Rider") == 0) {
            return static_cast<const CRider*>(Entity);
        }
    }
    return nullptr;
}

// The clock runs on during a pause.
void TestForEnd(float Delta) {
    const CRider* Rider = FindRider();
    if (!Rider) {
        return;
    }
    if (Rider->Client.Pos.y < GLevel->Params.SizeY * END_OF_SLOPE) {
        GGameState = GAME_END;
    } else if (GGameState != GAME_END) {
        GTimeLeft -= Delta;
        if (GTimeLeft < 0) {
            GGameState = GAME_END;
        }
    }
}

// While the level is edited the screens with buttons keep away: a click is meant for the scene.
void RunScreen(float Delta) {
    if (GLevel->EditMode && (GGameState == GAME_MENU || GGameState == GAME_END)) {
        return;
    }
    switch (GGameState) {
    case GAME_LOGO:
        LogoStep(Delta);
        break;
    case GAME_MENU:
        MenuStep();
        break;
    case GAME_PLAYING:
        PlayStep();
        break;
    case GAME_END:
        EndStep();
        break;
    }
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

UINT32 CreateGame() {
    std::snprintf(GameName, GAME_NAME_SIZE, "SlopeRush");
    GGame = new SlopeRush;
    return 1;
}

void SlopeRush::Init() {
    ResetGameState();
    LoadTitlePictures();
    GrowTrees();
    LoadLevel(MENU_LEVEL, 0);
}

void SlopeRush::Free() {
    DeleteLevel();
    ReleaseTrees();
    ReleaseTitlePictures();
}

void SlopeRush::Update(float, float Delta) {
    if (WentDown(SDLK_F2) && !GPaused) {
        GLevel->ToggleEditor();
    }
    if (!GPaused) {
        GLevel->Update(Delta);
    }
    if (GLevel->EditMode && WantsSave()) {
        GLevel->SaveTemporaryLevel();
    }
    // A ride waits while its level is edited, and so does its clock.
    if (!GLevel->EditMode) {
        TestForEnd(Delta);
    }
    GLevel->OverlayRT.Bind();
    // Unless it is paused the editor has drawn its rows in the level's update.
    glClearColor(0, 0, 0, 0);
    if (!GLevel->EditMode || GPaused) {
        glClear(GL_COLOR_BUFFER_BIT);
    }
    RunScreen(Delta);
    if (!GLastFBOs.Empty() && GLastFBOs.Top() == &GLevel->OverlayRT) {
        GLevel->OverlayRT.Unbind();
    }
}

void SlopeRush::Render(float BlendDelta) {
    const float Blend = GPaused ? 0 : BlendDelta;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    M_CameraLerp(GCameraNow, GCameraPrev, Blend);
    GLevel->Render(Blend);
    if (GGameState == GAME_LOGO) {
        DrawLogo(Blend);
    }
    DrawOverlay();
}
