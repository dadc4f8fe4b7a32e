#include "input/Input.h"

#include "foundation/Camera.h"

#include <SDL/SDL.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

// Events are pushed into SDL's own queue, behind a video driver that shows nothing and makes no events itself.
class InputTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE), 0) << SDL_GetError();
        ASSERT_NE(SDL_SetVideoMode(WINDOW_WIDTH, WINDOW_HEIGHT, 32, SDL_SWSURFACE), nullptr) << SDL_GetError();
    }
    static void TearDownTestSuite() { SDL_Quit(); }

    void SetUp() override {
        DrainQueue();
        InputReset();
    }
    void TearDown() override {
        for (SKeyBind& Bind : GGameBinds) {
            UnbindAction(Bind);
            Bind.State = Bind.Down = Bind.WasDown = 0;
            Bind.Value = 0.0f;
        }
    }

    static int DrainQueue() {
        SDL_Event Event;
        int Count = 0;
        while (SDL_PollEvent(&Event)) {
            ++Count;
        }
        return Count;
    }

    static void PushKey(UINT32 Symbol, bool Pressed, UINT32 Modifiers = 0, UINT16 Unicode = 0) {
        SDL_Event Event = {};
        Event.type = Pressed ? SDL_KEYDOWN : SDL_KEYUP;
        Event.key.keysym.sym = static_cast<SDLKey>(Symbol);
        Event.key.keysym.mod = static_cast<SDLMod>(Modifiers);
        Event.key.keysym.unicode = Unicode;
        ASSERT_EQ(SDL_PushEvent(&Event), 0);
    }
    static void PushButton(UINT8 Button, bool Pressed) {
        SDL_Event Event = {};
        Event.type = Pressed ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
        Event.button.button = Button;
        ASSERT_EQ(SDL_PushEvent(&Event), 0);
    }
    static void PushMotion(UINT16 X, UINT16 Y) {
        SDL_Event Event = {};
        Event.type = SDL_MOUSEMOTION;
        Event.motion.x = X;
        Event.motion.y = Y;
        ASSERT_EQ(SDL_PushEvent(&Event), 0);
    }
    static void PushQuit() {
        SDL_Event Event = {};
        Event.type = SDL_QUIT;
        ASSERT_EQ(SDL_PushEvent(&Event), 0);
    }

    static void Step() {
        InputBeginStep();
        InputPump();
    }

    // The states of Bind over Steps steps from now on, as digits.
    static std::string StatesOver(const SKeyBind& Bind, int Steps) {
        std::string States;
        for (int i = 0; i < Steps; ++i) {
            Step();
            States += static_cast<char>('0' + Bind.State);
        }
        return States;
    }

    SKeyBind& Cut = GGameBinds[BIND_CUT];
    SKeyBind& Left = GGameBinds[BIND_MOVE_LEFT];
};

TEST_F(InputTest, KeyArraysFollowTheKeyAndKeepTheLastStep) {
    PushKey(SDLK_w, true);
    Step();
    EXPECT_EQ(GKeys[SDLK_w], 1);
    EXPECT_EQ(GLastKeys[SDLK_w], 0);
    Step();
    EXPECT_EQ(GKeys[SDLK_w], 1);
    EXPECT_EQ(GLastKeys[SDLK_w], 1);
    PushKey(SDLK_w, false);
    Step();
    EXPECT_EQ(GKeys[SDLK_w], 0);
    EXPECT_EQ(GLastKeys[SDLK_w], 1);
}

TEST_F(InputTest, TheFirstAndTheLastKeySymbolHaveTheirPlace) {
    PushKey(0, true);
    PushKey(SDLK_LAST - 1, true);
    PushKey(SDLK_LAST, true); // no key of SDL's; must touch nothing behind the array
    Step();
    EXPECT_EQ(GKeys[0], 1);
    EXPECT_EQ(GKeys[SDLK_LAST - 1], 1);
    EXPECT_EQ(GTypedText.count, 2u);
}

TEST_F(InputTest, MouseButtonsOneAndThreeSetTheirFlagsAndTwoNone) {
    PushButton(SDL_BUTTON_LEFT, true);
    PushButton(SDL_BUTTON_MIDDLE, true);
    Step();
    EXPECT_EQ(GMouseLeft, 1);
    EXPECT_EQ(GLastMouseLeft, 0);
    EXPECT_EQ(GMouseRight, 0);
    PushButton(SDL_BUTTON_LEFT, false);
    PushButton(SDL_BUTTON_RIGHT, true);
    Step();
    EXPECT_EQ(GMouseLeft, 0);
    EXPECT_EQ(GLastMouseLeft, 1);
    EXPECT_EQ(GMouseRight, 1);
    PushButton(SDL_BUTTON_RIGHT, false);
    Step();
    EXPECT_EQ(GMouseRight, 0);
    EXPECT_EQ(GLastMouseRight, 1);
}

TEST_F(InputTest, MousePositionIsThatOfTheLastMotion) {
    PushMotion(10, 20);
    Step();
    PushMotion(300, 200);
    PushMotion(700, 400);
    Step();
    EXPECT_EQ(GMousePos.x, 700.0f);
    EXPECT_EQ(GMousePos.y, 400.0f);
    EXPECT_EQ(GLastMousePos.x, 10.0f);
    EXPECT_EQ(GLastMousePos.y, 20.0f);
}

TEST_F(InputTest, TypedTextHoldsOneCharacterPerKeyZerosIncluded) {
    PushKey(SDLK_a, true, 0, 'a');
    PushKey(SDLK_LSHIFT, true, 0, 0);
    PushKey(SDLK_b, true, KMOD_LSHIFT, 'B');
    PushKey(SDLK_a, false, 0, 'a');
    Step();
    ASSERT_EQ(GTypedText.count, 3u);
    EXPECT_EQ(std::string(GTypedText.CStr(), GTypedText.count), std::string("a\0B", 3));
    Step();
    EXPECT_EQ(GTypedText.count, 0u);
}

TEST_F(InputTest, TypedTextKeepsSevenBits) {
    PushKey(SDLK_WORLD_68, true, 0, 0xE4);
    PushKey(SDLK_x, true, 0, 0x4A1);
    Step();
    EXPECT_EQ(std::string(GTypedText.CStr(), GTypedText.count), "d!");
}

TEST_F(InputTest, TypedTextGrowsPastItsInlineRoom) {
    for (int i = 0; i < 40; ++i) {
        PushKey(SDLK_0, true, 0, static_cast<UINT16>('0' + i % 10));
    }
    Step();
    EXPECT_EQ(std::string(GTypedText.CStr(), GTypedText.count), "0123456789012345678901234567890123456789");
}

TEST_F(InputTest, QuitLeavesTheEventsBehindItInTheQueue) {
    PushKey(SDLK_w, true);
    PushQuit();
    PushKey(SDLK_s, true);
    PushKey(SDLK_d, true);
    Step();
    EXPECT_NE(GQuit, 0u);
    EXPECT_EQ(GKeys[SDLK_w], 1);
    EXPECT_EQ(GKeys[SDLK_s], 0);
    EXPECT_EQ(DrainQueue(), 2);
}

class AltF4Test : public InputTest, public testing::WithParamInterface<UINT32> {};

TEST_P(AltF4Test, QuitsAndLeavesTheEventsBehindIt) {
    PushKey(SDLK_F4, true, GetParam() | KMOD_NUM);
    PushKey(SDLK_s, true);
    Step();
    EXPECT_NE(GQuit, 0u);
    EXPECT_EQ(GKeys[SDLK_F4], 0);
    EXPECT_EQ(GTypedText.count, 0u);
    EXPECT_EQ(DrainQueue(), 1);
}
INSTANTIATE_TEST_SUITE_P(BothAltKeys, AltF4Test, testing::Values(KMOD_LALT, KMOD_RALT));

TEST_F(InputTest, F4WithoutAltIsAKey) {
    PushKey(SDLK_F4, true, KMOD_CTRL | KMOD_SHIFT | KMOD_NUM);
    PushKey(SDLK_F4, false, KMOD_ALT);
    Step();
    EXPECT_EQ(GQuit, 0u);
    EXPECT_EQ(GLastKeys[SDLK_F4], 0);
    EXPECT_EQ(DrainQueue(), 0);
}

TEST_F(InputTest, ResetForgetsEverythingButTheBindings) {
    BindAction(Left, true);
    PushKey(SDLK_w, true, 0, 'w');
    PushMotion(5, 6);
    PushButton(SDL_BUTTON_LEFT, true);
    PushQuit();
    Step();
    GWarpMouse = 1;
    InputReset();
    EXPECT_EQ(GKeys[SDLK_w] + GLastKeys[SDLK_w] + GMouseLeft + GLastMouseLeft, 0);
    EXPECT_EQ(GMousePos.x + GMousePos.y + GLastMousePos.x + GLastMousePos.y, 0.0f);
    EXPECT_EQ(GTypedText.count, 0u);
    EXPECT_EQ(GQuit + GWarpMouse, 0u);
    EXPECT_EQ(GKeyBinds.Find(SDLK_LEFT)->value.Bind, &Left);
}

TEST_F(InputTest, AKeyIsPressedThenHeldThenReleasedThenIdle) {
    BindAction(Left, true);
    PushKey(SDLK_LEFT, true);
    EXPECT_EQ(StatesOver(Left, 3), "122");
    EXPECT_EQ(Left.Value, 1.0f);
    PushKey(SDLK_LEFT, false);
    EXPECT_EQ(StatesOver(Left, 3), "300");
    EXPECT_EQ(Left.Value, 0.0f);
}

TEST_F(InputTest, AKeyThatRepeatsStaysHeld) {
    BindAction(Left, true);
    PushKey(SDLK_LEFT, true);
    Step();
    PushKey(SDLK_LEFT, true);
    EXPECT_EQ(StatesOver(Left, 2), "22");
}

TEST_F(InputTest, PressAndReleaseWithinOneStepIsNotSeen) {
    BindAction(Left, true);
    PushKey(SDLK_LEFT, true);
    PushKey(SDLK_LEFT, false);
    EXPECT_EQ(StatesOver(Left, 2), "00");
    EXPECT_EQ(GKeys[SDLK_LEFT], 0);
}

TEST_F(InputTest, ReleaseAndPressWithinOneStepStaysHeld) {
    BindAction(Left, true);
    PushKey(SDLK_LEFT, true);
    Step();
    PushKey(SDLK_LEFT, false);
    PushKey(SDLK_LEFT, true);
    EXPECT_EQ(StatesOver(Left, 2), "22");
}

TEST_F(InputTest, TheSecondKeyOfAnActionWorksLikeTheFirst) {
    BindAction(Cut, true);
    PushKey(SDLK_a, true);
    EXPECT_EQ(StatesOver(Cut, 2), "12");
    PushKey(SDLK_a, false);
    Step();
    PushKey(SDLK_SPACE, true);
    EXPECT_EQ(StatesOver(Cut, 2), "12");
}

TEST_F(InputTest, MouseButtonsCanBeBound) {
    SKeyBind Fire;
    Fire.Name = "Fire";
    Fire.Keys[0].Code = CODE_MOUSE_BUTTON + 2;
    BindAction(Fire, true);
    PushButton(SDL_BUTTON_MIDDLE, true);
    EXPECT_EQ(StatesOver(Fire, 2), "12");
    PushButton(SDL_BUTTON_MIDDLE, false);
    EXPECT_EQ(StatesOver(Fire, 2), "30");
    UnbindAction(Fire);
}

TEST_F(InputTest, AxesGiveTheMousePositionAsPartOfTheWindow) {
    SKeyBind Aim;
    Aim.Name = "Aim";
    Aim.Keys[0].Code = CODE_MOUSE_X;
    SKeyBind Tilt;
    Tilt.Name = "Tilt";
    Tilt.Keys[0].Code = CODE_MOUSE_Y;
    BindAction(Aim, true);
    BindAction(Tilt, true);
    PushMotion(256, 432);
    Step();
    EXPECT_FLOAT_EQ(Aim.Value, 0.25f);
    EXPECT_FLOAT_EQ(Tilt.Value, 0.75f);
    EXPECT_EQ(Aim.State, KEY_PRESSED);
    PushMotion(0, 432);
    Step();
    EXPECT_EQ(Aim.State, KEY_IDLE);
    EXPECT_EQ(Aim.Value, 0.0f);
    EXPECT_EQ(Tilt.State, KEY_PRESSED);
    UnbindAction(Aim);
    UnbindAction(Tilt);
}

TEST_F(InputTest, AnAxisIsAtRestUpToItsDeadZoneOnBothSides) {
    SKeyBind Aim;
    Aim.Name = "Aim";
    Aim.Keys[0].Code = CODE_MOUSE_X;
    BindAction(Aim, true);
    SetAxisState(CODE_MOUSE_X, 0.0001f);
    EXPECT_EQ(Aim.State, KEY_IDLE);
    SetAxisState(CODE_MOUSE_X, -0.0002f);
    EXPECT_EQ(Aim.State, KEY_PRESSED);
    UnbindAction(Aim);
}

TEST_F(InputTest, AnUnknownKeyReachesTheActionBoundLast) {
    for (SKeyBind& Bind : GGameBinds) {
        BindAction(Bind, true);
    }
    PushKey(SDLK_UNKNOWN, true);
    Step();
    EXPECT_EQ(Cut.State, KEY_PRESSED);
    for (int i = BIND_MOVE_LEFT; i < BIND_CUT; ++i) {
        EXPECT_EQ(GGameBinds[i].State, KEY_IDLE) << i;
    }
}

TEST_F(InputTest, AnUnboundActionHearsNothingAndKeepsItsState) {
    BindAction(Cut, true);
    GActiveBinds.Add(&Cut);
    PushKey(SDLK_SPACE, true);
    Step();
    UnbindAction(Cut);
    PushKey(SDLK_SPACE, false);
    EXPECT_EQ(StatesOver(Cut, 2), "11");
    EXPECT_EQ(GActiveBinds.count, 0u);
    EXPECT_NE(GKeyBinds.Find(SDLK_SPACE), nullptr);
}

TEST_F(InputTest, UnbindingTakesOutTheFirstOfTwoRegistrationsAndNoOther) {
    GActiveBinds.Add(&Cut);
    GActiveBinds.Add(&Left);
    GActiveBinds.Add(&Cut);
    UnbindAction(Cut);
    ASSERT_EQ(GActiveBinds.count, 2u);
    EXPECT_EQ(GActiveBinds[0], &Left);
    EXPECT_EQ(GActiveBinds[1], &Cut);
}

TEST_F(InputTest, UnbindingGoesByTheName) {
    SKeyBind Twin;
    Twin.Name = "BCUT";
    Twin.Keys[0].Code = SDLK_F1;
    BindAction(Cut, true);
    BindAction(Left, true);
    UnbindAction(Twin);
    EXPECT_EQ(GKeyBinds.Find(SDLK_SPACE)->value.Bind, nullptr);
    EXPECT_EQ(GKeyBinds.Find(SDLK_LEFT)->value.Bind, &Left);
}

TEST_F(InputTest, ACodeWithoutABindingIsIgnored) {
    SetKeyState(SDLK_F12, true);
    SetAxisState(CODE_MOUSE_Y + 100, 1.0f);
    EXPECT_EQ(GKeyBinds.Find(SDLK_F12), nullptr);
    EXPECT_EQ(GKeyBinds.Find(CODE_MOUSE_Y + 100), nullptr);
}

} // namespace
