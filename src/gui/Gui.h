// Text, buttons and value widgets on the virtual screen of 1024 by 576, y downward like the mouse.
//
// The widgets keep no objects: a caller asks for a widget in every step, and its state is found by an id that is fixed
// in the code, one for all of game and editor. While a CGuiScope lives the program, the blending and the font's scale
// are set; the caller has bound the target. Ownership: GButtons is made at first use; GuiFree deletes it at shut-down.
// Cost: a widget is a look-up and one text. Without a font nothing is seen, but widgets work.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"

struct SButtonState {
    UINT32 Hover = 0;
    UINT32 Pressed = 0; // the mouse button went down on this button and is held
    GString Text;       // of a value to drag: what it was when the last drag ended; its tenth is the next drag's step
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

// The text in the middle of the rectangle. State: 0 plain, 1 the mouse is over it, 2 pressed.
void GuiLabel(UINT32 State, float x, float y, float Width, float Height, const char* Text);

// Flips the value between 0 and 1 by a click. 1 in the step in which it does.
UINT32 GuiCheckBox(UINT32* Value, UINT32 Id, float x, float y, float Width, float Height);

// A number that follows the mouse sideways while the button is held on it, the faster the coarser.
void GuiDragFloat(float* Value, UINT32 Id, float x, float y, float Width, float Height, float Min, float Max);

// No widget is held any more, though the mouse button may be down: for who takes widgets off the screen.
void GuiLetGo();

void GuiFree();
