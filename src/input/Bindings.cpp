#include "input/Input.h"

#include <cmath>

GMap<UINT32, SKeyBindEntry> GKeyBinds;
GArray<SKeyBind*> GActiveBinds;

SKeyBind GGameBinds[GAME_BIND_COUNT] = {
    {"MOVE_LEFT", {{SDLK_LEFT, SDLK_LEFT}}},
    {"MOVE_RIGHT", {{SDLK_RIGHT, SDLK_RIGHT}}},
    {"MOVE_FWD", {{SDLK_UP, SDLK_UP}}},
    {"MOVE_SLDN", {{SDLK_DOWN, SDLK_DOWN}}},
    {"BCUT", {{SDLK_SPACE, SDLK_SPACE}, {SDLK_a, SDLK_a}}},
};

namespace {

// An axis nearer to zero than this is at rest.
constexpr float AXIS_DEAD_ZONE = 0.0001f;

SKeyBind* FindBind(UINT32 Code) {
    const auto* Node = GKeyBinds.Find(Code);
    return Node ? Node->value.Bind : nullptr;
}

} // namespace

void BindAction(SKeyBind& Bind, bool On) {
    if (On) {
        for (const SKeyCode& Key : Bind.Keys) {
            SKeyBindEntry& Entry = GKeyBinds[Key.Code];
            Entry.Bind = &Bind;
            Entry.Name = Bind.Name;
        }
        return;
    }
    for (GMap<UINT32, SKeyBindEntry>::Iterator It(GKeyBinds); It.Valid(); It.Next()) {
        if (It.Value().Name == Bind.Name) {
            It.Value().Bind = nullptr;
        }
    }
}

void UnbindAction(SKeyBind& Bind) {
    BindAction(Bind, false);
    for (UINT32 i = 0; i < GActiveBinds.count; ++i) {
        if (GActiveBinds[i] == &Bind) {
            GActiveBinds.Remove(i, i);
            return;
        }
    }
}

void SetKeyState(UINT32 Code, bool Pressed) {
    SKeyBind* Bind = FindBind(Code);
    if (!Bind) {
        return;
    }
    Bind->Value = Pressed ? 1.0f : 0.0f;
    Bind->Down = Pressed;
    if (Pressed) {
        Bind->State = Bind->WasDown ? KEY_HELD : KEY_PRESSED;
    } else {
        Bind->State = Bind->WasDown ? KEY_RELEASED : KEY_IDLE;
    }
}

void SetAxisState(UINT32 Code, float Value) {
    if (SKeyBind* Bind = FindBind(Code)) {
        Bind->Value = Value;
        Bind->State = std::fabs(Value) > AXIS_DEAD_ZONE ? KEY_PRESSED : KEY_IDLE;
    }
}

void TickBinds() {
    for (GMap<UINT32, SKeyBindEntry>::Iterator It(GKeyBinds); It.Valid(); It.Next()) {
        if (SKeyBind* Bind = It.Value().Bind) {
            // A record with several keys is reached once per entry; each pass gives the same result.
            Bind->WasDown = Bind->Down;
            Bind->State = Bind->Down ? KEY_HELD : KEY_IDLE;
        }
    }
}
