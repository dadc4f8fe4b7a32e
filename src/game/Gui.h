// Text and buttons on the virtual screen of 1024 by 576, y downward like the mouse.
//
// The widgets keep no objects: a caller asks for a button in every step, and its state is found by an id that is fixed
// in the code. While a CGuiScope lives the program, the blending and the font's scale are set; the caller has bound the
// target. Ownership: GButtons is made at first use; GuiFree deletes it at shut-down.
// Cost: a button is a look-up and one text. Without a font nothing is seen, but buttons work.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"

struct SButtonState {
    UINT32 Hover = 0;
    UINT32 Pressed = 0; // the mouse button went down on this button and is held
    GString Text;       // of an editable value
};

extern GMap<UINT32, SButtonState>* GButtons;

struct SScreenRect {
    float Left, Top, Right, Bottom;
};

// Sizes of text drawn while it lives are multiplied by FontScale.
class CGuiScope {
public:
    explicit CGuiScope(float FontScale);
    ~CGuiScope();
    CGuiScope(const CGuiScope&) = delete;
    CGuiScope& operator=(const CGuiScope&) = delete;

private:
    float SavedScale;
};

// Flags are those of the font (scene/GLFont.h).
void GuiText(const char* Text, const Vec4& Color, UINT32 Flags, const SScreenRect& Rect, float Size);

// The label is the whole button. 1 in the step in which the mouse button comes up over it after it went down on it.
UINT32 GuiButton(UINT32 Id, float x, float y, float Width, float Height, const char* Label);

void GuiFree();
