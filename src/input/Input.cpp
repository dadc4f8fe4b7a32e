#include "input/Input.h"

#include "foundation/Camera.h"

#include <SDL/SDL_events.h>
#include <cstring>

UINT8 GKeys[SDLK_LAST];
UINT8 GLastKeys[SDLK_LAST];
UINT8 GMouseLeft, GLastMouseLeft;
UINT8 GMouseRight, GLastMouseRight;
Vec2 GLastMousePos;
GString GTypedText;
UINT32 GQuit;
UINT32 GWarpMouse;

namespace {

// Typed characters are ASCII: the low seven bits of what SDL gives as Unicode.
constexpr UINT32 TYPED_CHAR_MASK = 0x7F;

void SetMouseButton(UINT8 Button, bool Pressed) {
    SetKeyState(CODE_MOUSE_BUTTON | Button, Pressed);
    if (Button == SDL_BUTTON_LEFT) {
        GMouseLeft = Pressed;
    } else if (Button == SDL_BUTTON_RIGHT) {
        GMouseRight = Pressed;
    }
}

void SetKey(const SDL_keysym& Key, bool Pressed) {
    if (Key.sym >= SDLK_LAST) {
        return;
    }
    GKeys[Key.sym] = Pressed;
    if (Pressed) {
        GTypedText.InsertChar(GTypedText.count, static_cast<char>(Key.unicode & TYPED_CHAR_MASK));
    }
    SetKeyState(Key.sym, Pressed);
}

bool EndsProgram(const SDL_Event& Event) {
    return Event.type == SDL_QUIT ||
           (Event.type == SDL_KEYDOWN && Event.key.keysym.sym == SDLK_F4 && (Event.key.keysym.mod & KMOD_ALT));
}

void HandleEvent(const SDL_Event& Event) {
    switch (Event.type) {
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        SetKey(Event.key.keysym, Event.type == SDL_KEYDOWN);
        break;
    case SDL_MOUSEMOTION:
        GMousePos.x = Event.motion.x;
        GMousePos.y = Event.motion.y;
        SetAxisState(CODE_MOUSE_X, GMousePos.x / WINDOW_WIDTH);
        SetAxisState(CODE_MOUSE_Y, GMousePos.y / WINDOW_HEIGHT);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        SetMouseButton(Event.button.button, Event.type == SDL_MOUSEBUTTONDOWN);
        break;
    default:
        break;
    }
}

} // namespace

void InputBeginStep() {
    GLastMouseLeft = GMouseLeft;
    GLastMouseRight = GMouseRight;
    std::memcpy(GLastKeys, GKeys, sizeof(GKeys));
    GTypedText = "";
    GLastMousePos = GMousePos;
}

void InputPump() {
    TickBinds();
    SDL_Event Event;
    while (SDL_PollEvent(&Event)) {
        if (EndsProgram(Event)) {
            GQuit = 1;
            return;
        }
        HandleEvent(Event);
    }
}

void InputReset() {
    std::memset(GKeys, 0, sizeof(GKeys));
    GMouseLeft = GMouseRight = 0;
    GMousePos = Vec2();
    InputBeginStep();
    GQuit = 0;
    GWarpMouse = 0;
}
