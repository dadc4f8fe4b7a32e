// What the player does, as a state that the fixed step polls; nothing is delivered by callback.
//
// Raw layer: global arrays with every key and mouse button of this step and of the step before. A key has just gone
// down if GKeys[k] is set and GLastKeys[k] is not; mouse movement is GMousePos (foundation/Camera.h) minus
// GLastMousePos. Binding layer: a piece of game code gives an action a name and up to three codes (SKeyBind), binds it
// and reads SKeyBind::State: 1 in the step of the press, 2 while held, 3 in the step of the release, else 0.
//
// Ownership: a record belongs to whoever binds it and must stay alive until it is unbound or the program ends.
// Entries of GKeyBinds are never removed, only cleared.
// Lifetime: everything here is valid for the step in which InputPump filled it. A key that goes down and up again
// within one step is seen by nobody.
// Cost: InputPump walks all entries of GKeyBinds once and drains SDL's queue; everything else is a look-up.
// Units: mouse positions are pixels of the window, y downward.
// Bad input: a code that nobody has bound is ignored.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Screen.h"
#include "foundation/Types.h"
#include "foundation/Vector.h"

#include <SDL/SDL_keysym.h>

// Codes of GKeyBinds: SDL's key symbols as they are, then mouse buttons and axes.
constexpr UINT32 CODE_MOUSE_BUTTON = 0x10000; // plus the button: 1 left, 2 middle, 3 right
constexpr UINT32 CODE_MOUSE_X = 0x1000A;
constexpr UINT32 CODE_MOUSE_Y = 0x1000B;

extern UINT8 GKeys[SDLK_LAST];
extern UINT8 GLastKeys[SDLK_LAST];
extern UINT8 GMouseLeft, GLastMouseLeft;
extern UINT8 GMouseRight, GLastMouseRight;
extern Vec2 GLastMousePos;

// One character per key that went down in this step, zeros included: count tells the length, not the terminator.
extern GString GTypedText;

// Non-zero ends the main loop after the turn that is running.
extern UINT32 GQuit;

// Non-zero puts the mouse back to the window's centre on every step.
extern UINT32 GWarpMouse;

enum EKeyState : UINT8 { KEY_IDLE = 0, KEY_PRESSED = 1, KEY_HELD = 2, KEY_RELEASED = 3 };

constexpr int KEYS_PER_BIND = 3;

struct SKeyCode {
    UINT32 Code = 0;   // 0 is an unused slot
    UINT32 Repeat = 0; // the code once more, which nothing reads
};

struct SKeyBind {
    GString Name;
    SKeyCode Keys[KEYS_PER_BIND];
    UINT8 State = KEY_IDLE;
    UINT8 Down = 0;
    UINT8 WasDown = 0;
    float Value = 0.0f; // 1 or 0 for keys, the position for an axis
};

struct SKeyBindEntry {
    SKeyBind* Bind = nullptr;
    GString Name;
};

extern GMap<UINT32, SKeyBindEntry> GKeyBinds;
extern GArray<SKeyBind*> GActiveBinds;

// The actions of the game, in the order in which they are registered.
enum EGameBind { BIND_MOVE_LEFT, BIND_MOVE_RIGHT, BIND_MOVE_FWD, BIND_MOVE_SLDN, BIND_CUT, GAME_BIND_COUNT };
extern SKeyBind GGameBinds[GAME_BIND_COUNT];

// Makes Bind the owner of its three codes, or, with On false, clears every entry that carries its name.
// Unused slots bind code 0 as well: the record bound last hears of keys that SDL does not know.
// GActiveBinds is the caller's to fill.
void BindAction(SKeyBind& Bind, bool On);

// BindAction with On false; also takes the record out of GActiveBinds.
void UnbindAction(SKeyBind& Bind);

void SetKeyState(UINT32 Code, bool Pressed);
void SetAxisState(UINT32 Code, float Value);

// Moves the state of this step into the copies of the last one and empties the typed text. Runs before InputPump.
void InputBeginStep();

// Ages the bindings by one step: what was pressed is held, what was released is idle. InputPump begins with it.
void TickBinds();

// TickBinds, then reads SDL's events. An event that ends the program sets GQuit and leaves those
// behind it in the queue.
void InputPump();

// Forgets raw state and both flags, as at program start. Bindings stay.
void InputReset();
