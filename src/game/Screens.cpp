#include "game/Screens.h"

#include "foundation/GTemplate.h"
#include "foundation/Screen.h"
#include "game/GameState.h"
#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "gui/Gui.h"
#include "input/Input.h"
#include "scene/DrawHelpers.h"
#include "scene/GLFont.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <SDL/SDL.h>
#include <algorithm>
#include <cmath>

namespace {

constexpr float LOGO_START = -2.0f; // seconds of its clock
constexpr float LOGO_END = 4.0f;
constexpr float LOGO_REST = 2.0f;    // how long it stands still in the middle
constexpr float LOGO_SPEED = 800.0f; // world units per second, downward
constexpr Vec3 LOGO_PLACE = {-300, -600, 320};
constexpr float LOGO_SIZE = 350.0f;
constexpr float LOGO_ASPECT = 2.0f;

// Of the menus: headings and buttons. The HUD stays at 1.
constexpr float MENU_FONT_SCALE = 3.0f;

constexpr float BUTTON_X = 341;
constexpr float BUTTON_WIDTH = 341;
constexpr float BUTTON_HEIGHT = 72;
constexpr float FIRST_BUTTON_Y = 324;
constexpr float SECOND_BUTTON_Y = 432;
constexpr SScreenRect HEADING = {341, 216, 682, 288};
constexpr float HEADING_SIZE = 10.0f;

enum EButtonId : UINT32 {
    BUTTON_START = 50622,
    BUTTON_QUIT = 50633,
    BUTTON_PAUSE_CONTINUE = 50680,
    BUTTON_PAUSE_MENU = 50684,
    BUTTON_END_FIRST = 50737,
    BUTTON_END_MENU = 50749,
};

constexpr Vec4 BLACK = {0, 0, 0, 1};
constexpr Vec4 LOADING_COLOR = {0.9f, 0.9f, 0.9f, 1};
constexpr Vec4 PAUSE_COLOR = {0.1f, 0.2f, 0.4f, 1};
constexpr Vec4 BAD_COLOR = {0.9f, 0.15f, 0.1f, 1};
constexpr Vec4 TREES_DONE_COLOR = {0.2f, 0.85f, 0.1f, 1};
constexpr Vec4 TIME_COLOR = {0.9f, 0.85f, 0.8f, 1};
constexpr Vec4 FAILED_COLOR = {0.9f, 0.1f, 0.1f, 1};
constexpr Vec4 WON_COLOR = {0.1f, 0.9f, 0.1f, 1};

constexpr float LOADING_SIZE = 16.0f;
constexpr float SHADOW_OFFSET = 2.0f; // of the loading text, pixels

constexpr float HUD_SIZE = 24.0f;
constexpr float HUD_EDGE = 500.0f; // right and bottom of the HUD's rectangles
constexpr float HUD_X = 50.0f;
constexpr float TREES_Y = 50.0f;
constexpr float TIME_Y = 74.0f;
constexpr float SHORT_TIME = 10.0f; // seconds, from which on the clock is red

UINT32 FirstButton(UINT32 Id, const char* Label) {
    return GuiButton(Id, BUTTON_X, FIRST_BUTTON_Y, BUTTON_WIDTH, BUTTON_HEIGHT, Label);
}

UINT32 SecondButton(UINT32 Id, const char* Label) {
    return GuiButton(Id, BUTTON_X, SECOND_BUTTON_Y, BUTTON_WIDTH, BUTTON_HEIGHT, Label);
}

// Straight into the window, where the picture stands while the level loads. At the menus' scale.
void ShowLoading() {
    const char* const Text = "Use arrow keys to move and Space to cut.\nLoading...";
    constexpr UINT32 CENTERED = FONT_CENTERX | FONT_CENTERY;
    GLevel->Render(0);
    glEnable(GL_BLEND);
    UseGuiProgram();
    GuiText(Text, BLACK, CENTERED, {SHADOW_OFFSET, SHADOW_OFFSET, WINDOW_WIDTH, WINDOW_HEIGHT}, LOADING_SIZE);
    GuiText(Text, LOADING_COLOR, CENTERED, {0, 0, WINDOW_WIDTH, WINDOW_HEIGHT}, LOADING_SIZE);
    glDisable(GL_BLEND);
    SDL_GL_SwapBuffers();
}

void StartLevel(UINT32 Index) {
    const SLevelRecord& Record = GLevels[Index];
    GLevelIndex = Index;
    GTimeLeft = Record.TimeLimit;
    GTreesCut = 0;
    GGameState = GAME_PLAYING;
    GLevel->OverlayRT.Unbind();
    ShowLoading();
    LoadLevel(Record.File, Record.Trees);
}

void BackToMenu() {
    GGameState = GAME_MENU;
    GLevel->OverlayRT.Unbind();
    LoadLevel(MENU_LEVEL, 0);
}

void DrawTitle() {
    constexpr UINT32 WHITE = 0xFFFFFFFFu;
    constexpr float LEFT = 224, RIGHT = 800, BOTTOM = 288;
    const SVertex24 Corners[] = {{{RIGHT, BOTTOM, 0}, {1, 1}, WHITE},
                                 {{LEFT, BOTTOM, 0}, {0, 1}, WHITE},
                                 {{LEFT, 0, 0}, {0, 0}, WHITE},
                                 {{RIGHT, 0, 0}, {1, 0}, WHITE}};
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, GTitleTexture);
    DrawQuads24(Corners, 4);
}

// One pixel to the lower right in black, then in its colour.
void DrawHudLine(const char* Text, float Top, const Vec4& Color) {
    GuiText(Text, BLACK, 0, {HUD_X + 1, Top + 1, HUD_EDGE, HUD_EDGE}, HUD_SIZE);
    GuiText(Text, Color, 0, {HUD_X, Top, HUD_EDGE, HUD_EDGE}, HUD_SIZE);
}

void DrawHud() {
    constexpr UINT32 TREES_LENGTH = 128; // characters
    constexpr UINT32 TIME_LENGTH = 64;
    const UINT32 Quota = GLevels[GLevelIndex].Quota;
    GString Trees;
    Trees.Format(TREES_LENGTH, "Trees cut: %d/%d", GTreesCut, Quota);
    GString Time;
    Time.Format(TIME_LENGTH, "Time left: %d", static_cast<INT32>(std::lround(GTimeLeft)));
    DrawHudLine(Trees.CStr(), TREES_Y, GTreesCut < Quota ? BAD_COLOR : TREES_DONE_COLOR);
    DrawHudLine(Time.CStr(), TIME_Y, GTimeLeft < SHORT_TIME ? BAD_COLOR : TIME_COLOR);
}

void PauseMenu() {
    const CGuiScope Scope(MENU_FONT_SCALE);
    GuiText("PAUSE", PAUSE_COLOR, FONT_CENTERX, HEADING, HEADING_SIZE);
    const UINT32 Continue = FirstButton(BUTTON_PAUSE_CONTINUE, "Continue");
    const UINT32 Menu = SecondButton(BUTTON_PAUSE_MENU, "Back to menu");
    if (Continue || Menu) {
        GPaused = 0;
    }
    if (Menu) {
        BackToMenu();
    }
}

bool HasFailed() {
    return GTimeLeft <= 0 || GTreesCut < GLevels[GLevelIndex].Quota;
}

bool IsLastLevel() {
    return GLevelIndex == LEVEL_COUNT - 1;
}

struct SResult {
    const char* Text;
    const char* Button;
    Vec4 Color;
    UINT32 NextLevel;
};

SResult GetResult() {
    if (HasFailed()) {
        const char* Text = GTimeLeft <= 0 ? "You failed to get to the end on time!" : "You didn't cut enough trees!";
        return {Text, "Retry level", FAILED_COLOR, GLevelIndex};
    }
    if (IsLastLevel()) {
        return {"You finished the game!", "Restart game", WON_COLOR, 0};
    }
    return {"You completed the level!", "Continue", WON_COLOR, GLevelIndex + 1};
}

} // namespace

float GLogoTime = LOGO_START;
float GLogoDelta = 0;
UINT32 GLogoTexture = 0;
UINT32 GTitleTexture = 0;

void LoadTitlePictures() {
    GLogoTexture = TextureLoad("Data/Textures/Title/vantor_logo.png");
    GTitleTexture = TextureLoad("Data/Textures/Title/title.png");
    GLogoTime = LOGO_START;
}

void ReleaseTitlePictures() {
    TextureRelease(GTitleTexture);
    TextureRelease(GLogoTexture);
    GTitleTexture = 0;
    GLogoTexture = 0;
}

void LogoStep(float Delta) {
    GLogoDelta = Delta;
    GLogoTime += Delta;
    if (GLogoTime > LOGO_END || GKeys[SDLK_SPACE] || GLastKeys[SDLK_SPACE]) {
        GGameState = GAME_MENU;
    }
}

void DrawLogo(float BlendDelta) {
    float Time = GLogoDelta * BlendDelta + GLogoTime;
    if (Time > 0) {
        Time = std::max(Time - LOGO_REST, 0.0f);
    }
    glDepthMask(GL_FALSE);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    const UINT32 Program = ShaderGetProgram("ParticleSprite", "ParticleSprite");
    glUseProgram(Program);
    ShaderSetUniform1i(0, Program, "Texture");
    M_CameraLookAt(GViewMatrix);
    M_Mat4Perspective(GProjectionMatrix, GCamera.Fov * DEGREES, GCamera.Aspect, GCamera.Near, GCamera.Far);
    M_Mat4Identity(GWorldMatrix);
    ShaderSendWorldMatrix(Program);
    ShaderSendViewMatrix(Program);
    ShaderSendProjectionMatrix(Program);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, GLogoTexture);
    SVertex24 Sprite[4];
    MakeBillboard24(LOGO_PLACE - Vec3{0, 0, Time * LOGO_SPEED}, LOGO_SIZE, 0, LOGO_ASPECT, Sprite);
    DrawQuads24(Sprite, 4);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
}

void MenuStep() {
    const CGuiScope Scope(MENU_FONT_SCALE);
    DrawTitle();
    const UINT32 Start = FirstButton(BUTTON_START, "Start");
    if (SecondButton(BUTTON_QUIT, "Quit")) {
        GQuit = 1;
    }
    if (Start) {
        StartLevel(0);
    }
}

void PlayStep() {
    {
        const CGuiScope Scope(1);
        DrawHud();
    }
    if (GKeys[SDLK_ESCAPE] && !GLastKeys[SDLK_ESCAPE]) {
        GPaused = !GPaused;
    }
    if (GPaused) {
        PauseMenu();
    }
}

void EndStep() {
    const SResult Result = GetResult();
    const CGuiScope Scope(MENU_FONT_SCALE);
    GuiText(Result.Text, Result.Color, FONT_CENTERX, HEADING, HEADING_SIZE);
    const UINT32 First = FirstButton(BUTTON_END_FIRST, Result.Button);
    const UINT32 Menu = SecondButton(BUTTON_END_MENU, "Back to menu");
    if (First) {
        StartLevel(Result.NextLevel);
    } else if (Menu) {
        BackToMenu();
    }
}
