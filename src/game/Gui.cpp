#include "game/Gui.h"

#include "input/Input.h"
#include "scene/GLFont.h"

#include <GL/glew.h>

GMap<UINT32, SButtonState>* GButtons = nullptr;

namespace {

constexpr Vec4 PLAIN_COLOR = {0.9f, 0.9f, 0.9f, 1};
constexpr Vec4 HOVER_COLOR = {0.8f, 0.9f, 1.0f, 1};
constexpr Vec4 PRESSED_COLOR = {0.5f, 0.4f, 0.3f, 1};
constexpr float LABEL_SIZE = 14.0f;

SButtonState& ButtonState(UINT32 Id) {
    if (!GButtons) {
        GButtons = new GMap<UINT32, SButtonState>;
    }
    return (*GButtons)[Id];
}

bool IsMouseIn(const SScreenRect& Rect) {
    return GMousePos.x >= Rect.Left && GMousePos.x <= Rect.Right && GMousePos.y >= Rect.Top &&
           GMousePos.y <= Rect.Bottom;
}

} // namespace

// What is drawn into an empty layer keeps its alpha, so that the layer can be laid over a picture.
CGuiScope::CGuiScope(float FontScale) : SavedScale(GFont ? GFont->Scale : 1) {
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    UseGuiProgram();
    if (GFont) {
        GFont->Scale *= FontScale;
    }
}

CGuiScope::~CGuiScope() {
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_BLEND);
    if (GFont) {
        GFont->Scale = SavedScale;
    }
}

void GuiText(const char* Text, const Vec4& Color, UINT32 Flags, const SScreenRect& Rect, float Size) {
    if (GFont) {
        GFont->Draw(Text, M_PackColor(Color), Flags, Rect.Left, Rect.Right, Rect.Top, Rect.Bottom, Size);
    }
}

UINT32 GuiButton(UINT32 Id, float x, float y, float Width, float Height, const char* Label) {
    SButtonState& State = ButtonState(Id);
    const SScreenRect Rect = {x, y, x + Width, y + Height};
    const bool WentDown = GMouseLeft && !GLastMouseLeft;
    const bool CameUp = !GMouseLeft && GLastMouseLeft;
    State.Hover = IsMouseIn(Rect);
    const UINT32 Clicked = State.Pressed && State.Hover && CameUp;
    if (WentDown && State.Hover) {
        State.Pressed = 1;
    } else if (CameUp) {
        State.Pressed = 0;
    }
    const Vec4& Color = Clicked || !State.Hover ? PLAIN_COLOR : State.Pressed ? PRESSED_COLOR : HOVER_COLOR;
    GuiText(Label, Color, FONT_CENTERX | FONT_CENTERY, Rect, LABEL_SIZE);
    return Clicked;
}

void GuiFree() {
    delete GButtons;
    GButtons = nullptr;
}
