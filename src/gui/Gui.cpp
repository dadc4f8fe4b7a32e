#include "gui/Gui.h"

#include "input/Input.h"
#include "scene/GLFont.h"

#include <GL/glew.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>

GMap<UINT32, SButtonState>* GButtons = nullptr;

namespace {

constexpr Vec4 PLAIN_COLOR = {0.9f, 0.9f, 0.9f, 1};
constexpr Vec4 HOVER_COLOR = {0.8f, 0.9f, 1.0f, 1};
constexpr Vec4 PRESSED_COLOR = {0.5f, 0.4f, 0.3f, 1};
constexpr Vec4 PRESSED_MARK_COLOR = {0.6f, 0.6f, 0.6f, 1};
constexpr float LABEL_SIZE = 14.0f;
constexpr UINT32 CENTERED = FONT_CENTERX | FONT_CENTERY;

enum ELabelState : UINT32 { LABEL_PLAIN = 0, LABEL_HOVER = 1, LABEL_PRESSED = 2 };

// Of a value to drag: the mouse's way in a step is measured in tens of pixels, and its square counts ten steps.
constexpr float DRAG_PIXELS = 10.0f;
constexpr float DRAG_GAIN = 10.0f;
constexpr float FIRST_DRAG_STEP = 1.0f; // of a value that was 0 when the last drag ended, or never dragged
constexpr UINT32 VALUE_LENGTH = 63;     // characters; the largest float has 46

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

// Takes over the mouse of this step. True in the step of a completed click, which leaves Pressed to the caller.
bool TrackMouse(SButtonState& State, const SScreenRect& Rect) {
    const bool WentDown = GMouseLeft && !GLastMouseLeft;
    const bool CameUp = !GMouseLeft && GLastMouseLeft;
    State.Hover = IsMouseIn(Rect);
    const bool Clicked = State.Pressed && State.Hover && CameUp;
    if (WentDown && State.Hover) {
        State.Pressed = 1;
    } else if (CameUp) {
        State.Pressed = 0;
    }
    return Clicked;
}

UINT32 LabelState(const SButtonState& State) {
    return !State.Hover ? LABEL_PLAIN : State.Pressed ? LABEL_PRESSED : LABEL_HOVER;
}

// Fine where the mouse is slow, coarse where it is fast.
float DragWay(const SButtonState& State) {
    const float Tenth = std::fabs(static_cast<float>(std::atof(State.Text.CStr()))) / 10;
    const float Step = Tenth == 0 ? FIRST_DRAG_STEP : Tenth;
    const float Way = (GMousePos.x - GLastMousePos.x) / DRAG_PIXELS;
    return DRAG_GAIN * Way * std::fabs(Way) * Step;
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

void GuiLabel(UINT32 State, float x, float y, float Width, float Height, const char* Text) {
    const Vec4& Color = State == LABEL_PLAIN ? PLAIN_COLOR : State == LABEL_HOVER ? HOVER_COLOR : PRESSED_COLOR;
    GuiText(Text, Color, CENTERED, {x, y, x + Width, y + Height}, LABEL_SIZE);
}

UINT32 GuiButton(UINT32 Id, float x, float y, float Width, float Height, const char* Label) {
    SButtonState& State = ButtonState(Id);
    const bool Clicked = TrackMouse(State, {x, y, x + Width, y + Height});
    GuiLabel(Clicked ? LABEL_PLAIN : LabelState(State), x, y, Width, Height, Label);
    return Clicked;
}

UINT32 GuiCheckBox(UINT32* Value, UINT32 Id, float x, float y, float Width, float Height) {
    SButtonState& State = ButtonState(Id);
    const SScreenRect Rect = {x, y, x + Width, y + Height};
    const bool Clicked = TrackMouse(State, Rect);
    if (Clicked) {
        *Value = *Value == 0;
    }
    if (*Value) {
        GuiText("X", State.Pressed ? PRESSED_MARK_COLOR : PLAIN_COLOR, CENTERED, Rect, LABEL_SIZE);
    }
    return Clicked;
}

void GuiDragFloat(float* Value, UINT32 Id, float x, float y, float Width, float Height, float Min, float Max) {
    SButtonState& State = ButtonState(Id);
    if (State.Pressed) {
        *Value = std::clamp(*Value + DragWay(State), Min, Max);
    }
    GString Shown;
    Shown.Format(VALUE_LENGTH, "%f", *Value);
    const bool Ended = TrackMouse(State, {x, y, x + Width, y + Height});
    if (Ended) {
        State.Text = Shown;
    }
    GuiLabel(Ended ? LABEL_PLAIN : LabelState(State), x, y, Width, Height, Shown.CStr());
}

void GuiLetGo() {
    if (!GButtons) {
        return;
    }
    for (GMap<UINT32, SButtonState>::Iterator It(*GButtons); It.Valid(); It.Next()) {
        It.Value().Pressed = 0;
    }
}

void GuiFree() {
    delete GButtons;
    GButtons = nullptr;
}
