#include "input/Input.h"
#include "support/Common.h"

#include <SDL/SDL.h>

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

    InputTest() {
        DrainQueue();
        InputReset();
    }
    ~InputTest() override {
        UnbindAction(Free);
        for (SKeyBind& Bind : GGameBinds) {
            UnbindAction(Bind);
            Bind.State = Bind.Down = Bind.WasDown = 0;
        }
        GActiveBinds.Clear();
    }

    static int DrainQueue() {
        int Count = 0;
        for (SDL_Event Event; SDL_PollEvent(&Event); ++Count) {
        }
        return Count;
    }
    // A is a key, a button or x, B the modifiers or y.
    static void Push(UINT8 Type, UINT32 A = 0, UINT32 B = 0, UINT16 Unicode = 0) {
        SDL_Event Event = {};
        if (Type == SDL_MOUSEMOTION) {
            Event.motion.x = static_cast<UINT16>(A);
            Event.motion.y = static_cast<UINT16>(B);
        } else if (Type == SDL_MOUSEBUTTONDOWN || Type == SDL_MOUSEBUTTONUP) {
            Event.button.button = static_cast<UINT8>(A);
        } else {
            Event.key.keysym = {0, static_cast<SDLKey>(A), static_cast<SDLMod>(B), Unicode};
        }
        Event.type = Type;
        SDL_PushEvent(&Event);
    }
    static void Step() {
        InputBeginStep();
        InputPump();
    }

    SKeyBind Free = {"Free", {}}; // of the case's own
    SKeyBind& Cut = GGameBinds[BIND_CUT];
    SKeyBind& Left = GGameBinds[BIND_MOVE_LEFT];
};

// Of the events of a step the last one of each input counts, and with it the step before.
TEST_F(InputTest, StatesFollowTheLastEventOfAStepAndTheStepBefore) {
    const UINT8 NoFlag = 0;
    const struct {
        UINT8 DownEvent;
        UINT32 Code;
        const UINT8 &Flag, &LastFlag;
    } Inputs[] = {
        {SDL_KEYDOWN, SDLK_w, GKeys[SDLK_w], GLastKeys[SDLK_w]},
        {SDL_KEYDOWN, SDLK_LAST - 1, GKeys[SDLK_LAST - 1], GLastKeys[SDLK_LAST - 1]},
        {SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, GMouseLeft, GLastMouseLeft},
        {SDL_MOUSEBUTTONDOWN, SDL_BUTTON_MIDDLE, NoFlag, NoFlag},
        {SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, GMouseRight, GLastMouseRight},
    };
    Free.Keys[0].Code = SDLK_LAST - 1;
    Free.Keys[1].Code = CODE_MOUSE_BUTTON + SDL_BUTTON_LEFT;
    Free.Keys[2].Code = CODE_MOUSE_BUTTON + SDL_BUTTON_MIDDLE;
    BindAction(Free, true);
    std::array<int, 5> Now = {}, Last;
    int Down = 0;
    std::mt19937 Random(3);
    for (int Steps = 0; Steps < 500; ++Steps) {
        Last = Now;
        const int WasDown = Down;
        for (UINT32 Events = Random() % 4; Events > 0; --Events) {
            const UINT32 i = Random() % 5;
            Now[i] = Random() % 2;
            Down = i >= 1 && i <= 3 ? Now[i] : Down;
            Push(Inputs[i].DownEvent + !Now[i], Inputs[i].Code); // the event of letting go is the next one
        }
        Step();
        for (const UINT32 i : {0, 1, 2, 4}) {
            ASSERT_TRUE(Inputs[i].Flag == Now[i] && Inputs[i].LastFlag == Last[i]) << Inputs[i].Code;
        }
        ASSERT_EQ(Free.State, Down ? (WasDown ? KEY_HELD : KEY_PRESSED) : WasDown ? KEY_RELEASED : KEY_IDLE);
        ASSERT_EQ(Free.Value, static_cast<float>(Down));
    }
}

TEST_F(InputTest, MousePositionsAreThoseOfTheLastMotionAndAxesTheirPartOfTheWindow) {
    Free.Keys[0].Code = CODE_MOUSE_X;
    SKeyBind Tilt = {"Tilt", {{CODE_MOUSE_Y, 0}}};
    BindAction(Free, true);
    BindAction(Tilt, true);
    Push(SDL_MOUSEMOTION, 10, 20);
    Step();
    Push(SDL_MOUSEMOTION, 300, 200);
    Push(SDL_MOUSEMOTION, 256, 432);
    Step();
    EXPECT_TRUE((GMousePos == Vec2{256, 432} && GLastMousePos == Vec2{10, 20}));
    EXPECT_TRUE(Free.Value == 0.25f && Tilt.Value == 0.75f);
    UnbindAction(Tilt);
    for (const auto& [Value, State] : {std::pair{0.0001f, KEY_IDLE}, {-0.0002f, KEY_PRESSED}, {0.0f, KEY_IDLE}}) {
        SetAxisState(CODE_MOUSE_X, Value);
        EXPECT_EQ(Free.State, State) << Value;
    }
}

TEST_F(InputTest, TypedTextHoldsSevenBitsPerKeyThatGoesDownZerosIncluded) {
    const UINT16 Characters[] = {'a', 0, 'B', 0xE4, 0x4A1};
    std::string Expected;
    for (int i = 0; i < 40; ++i) {
        Push(SDL_KEYDOWN, SDLK_a, 0, Characters[i % 5]);
        Push(SDL_KEYUP, SDLK_a, 0, 'x');
        Expected += "a\0Bd!"[i % 5];
    }
    Push(SDL_KEYDOWN, SDLK_LAST, 0, 'x'); // no key of SDL's; must touch nothing behind the array
    Step();
    EXPECT_EQ(std::string(GTypedText.CStr(), GTypedText.count), Expected);
    Step();
    EXPECT_EQ(GTypedText.count, 0u);
}

TEST_F(InputTest, QuitAndAltF4LeaveTheEventsBehindThem) {
    for (const UINT32 Modifiers : {0, +KMOD_LALT, +KMOD_RALT, KMOD_CTRL | KMOD_SHIFT}) {
        InputReset();
        const bool Quits = Modifiers != (KMOD_CTRL | KMOD_SHIFT);
        Push(SDL_KEYUP, SDLK_F4, KMOD_ALT);
        Modifiers ? Push(SDL_KEYDOWN, SDLK_F4, Modifiers | KMOD_NUM) : Push(SDL_QUIT);
        Push(SDL_KEYDOWN, SDLK_s);
        Step();
        EXPECT_EQ(GQuit != 0, Quits) << Modifiers;
        EXPECT_TRUE(GKeys[SDLK_F4] == !Quits && GKeys[SDLK_s] == !Quits);
        EXPECT_EQ(DrainQueue(), Quits);
    }
}

TEST_F(InputTest, AnUnknownKeyReachesTheActionBoundLast) {
    for (SKeyBind& Bind : GGameBinds) {
        BindAction(Bind, true);
    }
    Push(SDL_KEYDOWN, SDLK_UNKNOWN);
    Step();
    for (SKeyBind& Bind : GGameBinds) {
        EXPECT_EQ(Bind.State, &Bind == &Cut ? KEY_PRESSED : KEY_IDLE) << Bind.Name.CStr();
    }
}

TEST_F(InputTest, UnbindingGoesByTheNameAndTakesOutOneRegistration) {
    SKeyBind Twin;
    Twin.Name = "BCUT";
    BindAction(Cut, true);
    BindAction(Left, true);
    for (SKeyBind* Bind : {&Cut, &Left, &Cut}) {
        GActiveBinds.Add(Bind);
    }
    Push(SDL_KEYDOWN, SDLK_a);
    Step();
    UnbindAction(Twin);
    EXPECT_EQ(GActiveBinds.count, 3u);
    UnbindAction(Cut);
    ASSERT_EQ(GActiveBinds.count, 2u);
    EXPECT_TRUE(GActiveBinds[0] == &Left && GActiveBinds[1] == &Cut);
    Push(SDL_KEYUP, SDLK_a);
    Step();
    EXPECT_EQ(Cut.State, KEY_PRESSED) << "an unbound action hears nothing and keeps its state";
    EXPECT_EQ(GKeyBinds.Find(SDLK_SPACE)->value.Bind, nullptr);
    EXPECT_EQ(GKeyBinds.Find(SDLK_LEFT)->value.Bind, &Left);
    SetKeyState(SDLK_F12, true);
    EXPECT_EQ(GKeyBinds.Find(SDLK_F12), nullptr) << "a code that nobody bound is ignored";
}

} // namespace
