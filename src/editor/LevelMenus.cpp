// The stack of the editor's menus: its step, its panel, and what lies over the picture.
#include "editor/BaseMenu.h"
#include "editor/Rows.h"
#include "foundation/Screen.h"
#include "graphics/ShaderLib.h"
#include "gui/Gui.h"
#include "input/Input.h"
#include "physics/Physics.h"
#include "scene/DrawHelpers.h"
#include "scene/GLFont.h"
#include "scene/LightClient.h"
#include "world/GameLevel.h"

#include <GL/glew.h>

void CLevel::InitMenus() {
    PushMenu(new SMenu_Base(this));
}

void CLevel::FreeMenus() {
    PopMenusToBase();
    delete Menus.last->obj;
    Menus.Clear();
}

// The rows of a menu go with it, so the mouse lets go of them here: a menu that comes later may show them again.
void CLevel::PushMenu(SMenu* Menu) {
    GuiLetGo();
    Menus.Append(Menu);
}

void CLevel::PopMenu() {
    GuiLetGo();
    delete Menus.last->obj;
    Menus.Unlink(Menus.last);
}

void CLevel::PopMenusToBase() {
    while (Menus.Size() > 1) {
        PopMenu();
    }
}

static void SetLayerBlending() {
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE);
}

void CLevel::UpdateEditor(float Delta) {
    // An entity may have set its own camera since the picture that the user points into.
    SetEditorCamera(1);
    OverlayRT.Bind();
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    MenuStep(Delta);
    OverlayRT.Unbind();
    PhyStep(Delta);
    UpdateEditorCamera();
}

static bool WentDown(UINT32 Key) {
    return GKeys[Key] && !GLastKeys[Key];
}

void CLevel::MenuStep(float Delta) {
    MenuRow = 0;
    glEnable(GL_BLEND);
    SetLayerBlending();
    UseGuiProgram(); // its view and projection are those of the rows
    SMenu* Top = Menus.last->obj;
    Top->Update(Delta);
    const UINT32 OpCount = Top->GetOpCount();
    for (UINT32 i = 0; i < OpCount; ++i) {
        if (WentDown(SDLK_1 + i)) {
            Menus.last->obj->DoOp(static_cast<INT32>(i) + 1);
        }
    }
    if (WentDown(SDLK_0) && Menus.Size() > 1) {
        PopMenu();
    }
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_BLEND);
}

void CLevel::DrawMenu() {
    constexpr float LEFT = 10, RIGHT = 200, TEXT_RIGHT = 500, TEXT_BOTTOM = 400;
    constexpr float LINE = 20.0f;
    constexpr UINT32 WHITE = 0xFFFFFFFFu;
    constexpr UINT32 NUMBER_LENGTH = 15; // characters
    SMenu* Top = Menus.last->obj;
    const UINT32 OpCount = Top->GetOpCount();
    UseColorProgram();
    DrawRect(LEFT, RIGHT, ROWS_TOP, ROWS_TOP + LINE * static_cast<float>(OpCount + 1), 0);
    GString Text;
    for (UINT32 i = 1; i <= OpCount; ++i) {
        GString Number, Name;
        Number.Format(NUMBER_LENGTH, "%u: ", i);
        Top->GetOpName(&Name, static_cast<INT32>(i));
        Text += Number;
        Text += Name;
        Text += "\n";
    }
    if (Menus.Size() > 1) {
        Text += "0: go back";
    }
    UseGuiProgram();
    if (GFont) {
        GFont->Draw(Text.CStr(), WHITE, 0, LEFT, TEXT_RIGHT, ROWS_TOP, TEXT_BOTTOM, LINE);
    }
}

static void DrawTexture(UINT32 Texture, float Left, float Right, float Top, float Bottom) {
    glBindTexture(GL_TEXTURE_2D, Texture);
    DrawQuad(Left, Right, Top, Bottom, 0);
}

// The scene's own tools first, then the rows as the last step drew them, then the shadow maps of the sun and
// of the first spot light as previews.
void CLevel::DrawEditorOverlay() {
    glEnable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    Menus.last->obj->Draw3D();
    glDepthMask(GL_FALSE);
    const UINT32 Program = ShaderGetProgram("FSQuad", "FSQuad");
    glUseProgram(Program);
    ShaderSetUniform1i(0, Program, "FSTex");
    glActiveTexture(GL_TEXTURE0);
    DrawTexture(OverlayRT.ColorTex, -1, 1, 1, -1);
    DrawTexture(ShadowRT.DepthTex, 0.25f, 0.5f, 1, 0.75f);
    if (Lights.count > 0) {
        DrawTexture(Lights[0]->ShadowTarget.DepthTex, 0.5f, 0.75f, 1, 0.75f);
    }
    glDepthMask(GL_TRUE);
    UseGuiProgram();
    DrawMenu();
    glDisable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
}
