// A contact sheet of a ride: a bot of the expert skill plays a level in the real game, and every few seconds of game
// time a picture of the window goes onto one sheet, row by row.
//
//     ride_sheet LEVEL SHEET [--seed N] [--every SECONDS] [--columns N] [--frames FOLDER]
//     ride_sheet LEVEL --pace [--seed N]
//
// LEVEL is 1 to 5, or 0 for the view behind the title; SHEET a .jpg or .png file. --frames leaves each picture in full
// size in a folder that is there. The seed sows the wood. Printed is a line for each picture (place, speed, trees, how
// long drawing it took) and one about the ride. With --pace there is no sheet: thirty pictures a second of game time
// are drawn as fast as can be, and how many a second of the clock that were is printed, the game's own steps included.
// Needs a display and the data beside the executable.
#include "Pace.h"
#include "bots/Ride.h"
#include "foundation/Diagnostics.h"
#include "foundation/Screen.h"
#include "game/GameState.h"
#include "game/IGame.h"
#include "game/Rider.h"
#include "input/Input.h"
#include "shell/Application.h"
#include "world/GameLevel.h"

#include <GL/glew.h>
#include <IL/il.h>
#include <IL/ilu.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr UINT32 THUMB_WIDTH = 320;
constexpr UINT32 THUMB_HEIGHT = THUMB_WIDTH * WINDOW_HEIGHT / WINDOW_WIDTH;
constexpr float FIRST_PICTURE = 0.5f; // seconds after the start
constexpr int MENU_PICTURES = 2;
constexpr float REST_TIME = 4; // seconds that are shown after the end
constexpr float PACE_STEP = 2 * BOT_STEP;

struct SWishes {
    UINT32 Level = 1;
    std::string Sheet; // empty: the pace is measured
    UINT32 Seed = 1;
    float Every = 5;
    UINT32 Columns = 4;
    std::string Frames; // empty: none are left
};

SWishes Wishes;

double MillisecondsSince(std::chrono::steady_clock::time_point Start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Start).count();
}

// The window's picture as an image of DevIL's, which the caller deletes.
ILuint GrabWindow() {
    const ILuint Image = ilGenImage();
    ilBindImage(Image);
    ilTexImage(WINDOW_WIDTH, WINDOW_HEIGHT, 1, 3, IL_RGB, IL_UNSIGNED_BYTE, nullptr);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, ilGetData());
    return Image;
}

void SaveImage(const std::string& File) {
    ilEnable(IL_FILE_OVERWRITE);
    ilSetInteger(IL_JPG_QUALITY, 80);
    if (!ilSaveImage(File.c_str())) {
        LogPrintf("%s could not be written\n", File.c_str());
    }
}

// Small pictures, in the order in which they came. Rows of an image stand from the lowest upwards.
class CSheet {
public:
    // Of the image that is bound, which becomes small.
    void Add() {
        iluImageParameter(ILU_FILTER, ILU_BILINEAR);
        iluScale(WINDOW_WIDTH / 2, WINDOW_HEIGHT / 2, 1);
        iluScale(THUMB_WIDTH, THUMB_HEIGHT, 1);
        Thumbs.emplace_back(ilGetData(), ilGetData() + THUMB_WIDTH * THUMB_HEIGHT * 3);
    }

    void Save(const std::string& File, UINT32 Columns) const {
        const UINT32 Count = static_cast<UINT32>(Thumbs.size());
        const UINT32 Rows = (Count + Columns - 1) / Columns;
        const ILuint Image = ilGenImage();
        ilBindImage(Image);
        ilTexImage(Columns * THUMB_WIDTH, Rows * THUMB_HEIGHT, 1, 3, IL_RGB, IL_UNSIGNED_BYTE, nullptr);
        ilClearColour(0.08f, 0.09f, 0.11f, 1);
        ilClearImage();
        for (UINT32 i = 0; i < Count; ++i) {
            const UINT32 y = (Rows - 1 - i / Columns) * THUMB_HEIGHT;
            ilSetPixels(static_cast<ILint>(i % Columns * THUMB_WIDTH), static_cast<ILint>(y), 0, THUMB_WIDTH,
                        THUMB_HEIGHT, 1, IL_RGB, IL_UNSIGNED_BYTE, const_cast<UINT8*>(Thumbs[i].data()));
        }
        SaveImage(File);
        ilDeleteImage(Image);
    }

private:
    std::vector<std::vector<UINT8>> Thumbs;
};

// Plays the real game: as many steps as lie between two pictures, then one picture.
class CRideGame : public IGame {
public:
    explicit CRideGame(IGame* Real) : Real(Real) {}

    void Init() override;
    void Free() override { Real->Free(); }
    void Update(float, float) override {} // steps are taken between pictures, not by the clock
    void Render(float) override;

private:
    void StepFor(float Seconds);
    void StepOnce();
    double Draw();
    void TakePicture();
    void Report(const Vec3& Place, double Milliseconds);
    bool IsOver() const;
    void End();

    std::unique_ptr<IGame> Real;
    std::unique_ptr<CBot> Bot;
    std::optional<CPlan> Plan;
    CSheet Sheet;
    CPace Pace;
    float Time = 0;
    float EndTime = 0; // when the level ended, 0 before
    int Pictures = 0;
    Vec3 LastPlace;
    double AllMilliseconds = 0, SlowestMilliseconds = 0;
};

void CRideGame::Init() {
    Real->Init();
    if (Wishes.Level == 0) {
        GGameState = GAME_MENU;
        StepOnce();
        return;
    }
    GLevelIndex = Wishes.Level - 1;
    StartRide(GLevelIndex, Wishes.Seed);
    GTimeLeft = GLevels[GLevelIndex].TimeLimit;
    Bot = std::make_unique<CBot>(Skills[EXPERT], Wishes.Seed);
    Plan.emplace(GLevels[GLevelIndex]);
    StepFor(FIRST_PICTURE);
    Pace = {}; // the first steps of a level fill its caches
}

void CRideGame::StepFor(float Seconds) {
    for (const float Until = Time + Seconds; Time < Until;) {
        StepOnce();
    }
}

void CRideGame::StepOnce() {
    if (Bot) {
        PressKeys(Bot->Think(Plan->Wanted(), Plan->Hurry(Time, Skills[EXPERT].Care)));
    }
    const auto Start = std::chrono::steady_clock::now();
    Real->Update(Time, BOT_STEP);
    Pace.Add(Time, MillisecondsSince(Start));
    Time += BOT_STEP;
    if (GGameState == GAME_END && EndTime == 0) {
        EndTime = Time;
    }
}

// Milliseconds of the picture, drawn to the end.
double CRideGame::Draw() {
    const auto Start = std::chrono::steady_clock::now();
    Real->Render(1);
    glFinish();
    return MillisecondsSince(Start);
}

// The first picture compiles shaders and is left out of the times.
void CRideGame::Render(float) {
    const double Took = Draw();
    if (Pictures > 0) {
        AllMilliseconds += Took;
        SlowestMilliseconds = std::max(SlowestMilliseconds, Took);
        Pace.Add(Time, Took);
        Pace.CountPicture();
    }
    if (!Wishes.Sheet.empty()) {
        TakePicture();
        Report(Bot ? TheRider().Client.Pos : GCamera.Eye, Took);
    }
    ++Pictures;
    if (IsOver()) {
        End();
        return;
    }
    StepFor(Wishes.Every);
}

void CRideGame::TakePicture() {
    const ILuint Image = GrabWindow();
    if (!Wishes.Frames.empty()) {
        char Name[32];
        std::snprintf(Name, sizeof(Name), "/%03d.png", Pictures);
        SaveImage(Wishes.Frames + Name);
    }
    Sheet.Add();
    ilDeleteImage(Image);
}

void CRideGame::Report(const Vec3& Place, double Milliseconds) {
    const float Speed = M_Length(Place - LastPlace) / Wishes.Every;
    std::printf("%5.1f s  at %6.0f %6.0f %5.0f  %4.0f units a second  %2u trees  %5.1f ms\n", Time, Place.x, Place.y,
                Place.z, Pictures > 0 ? Speed : 0, GTreesCut, Milliseconds);
    LastPlace = Place;
}

bool CRideGame::IsOver() const {
    return Bot ? EndTime > 0 && Time >= EndTime + REST_TIME : Pictures == MENU_PICTURES;
}

void CRideGame::End() {
    std::printf("level %u, seed %u: %.1f s, %u trees; a picture took %.1f ms, the slowest %.1f\n", Wishes.Level,
                Wishes.Seed, EndTime, GTreesCut, AllMilliseconds / std::max(1, Pictures - 1), SlowestMilliseconds);
    if (Wishes.Sheet.empty()) {
        Pace.Print();
    } else {
        Sheet.Save(Wishes.Sheet, Wishes.Columns);
    }
    GQuit = 1;
}

UINT32 CreateRideGame() {
    const UINT32 Result = CreateGame();
    GGame = new CRideGame(GGame);
    return Result;
}

// The program changes its folder, so paths are completed here.
std::string FullPath(const char* Path) {
    return std::filesystem::absolute(Path).string();
}

bool ReadWish(const std::string& Key, const char* Value) {
    if (Key == "--seed") {
        Wishes.Seed = static_cast<UINT32>(std::atoi(Value));
    } else if (Key == "--every") {
        Wishes.Every = std::max(BOT_STEP, static_cast<float>(std::atof(Value)));
    } else if (Key == "--columns") {
        Wishes.Columns = static_cast<UINT32>(std::max(1, std::atoi(Value)));
    } else if (Key == "--frames") {
        Wishes.Frames = FullPath(Value);
    } else {
        return false;
    }
    return true;
}

bool ReadWishes(int ArgCount, char** Args) {
    if (ArgCount < 3 || ArgCount % 2 == 0 || Args[1][0] < '0' || Args[1][0] > '5') {
        return false;
    }
    Wishes.Level = static_cast<UINT32>(Args[1][0] - '0');
    if (std::strcmp(Args[2], "--pace") == 0) {
        Wishes.Every = PACE_STEP;
    } else {
        Wishes.Sheet = FullPath(Args[2]);
    }
    for (int i = 3; i < ArgCount; i += 2) {
        if (!ReadWish(Args[i], Args[i + 1])) {
            return false;
        }
    }
    return true;
}

} // namespace

int main(int ArgCount, char** Args) {
    if (!ReadWishes(ArgCount, Args)) {
        std::printf("ride_sheet LEVEL SHEET [--seed N] [--every SECONDS] [--columns N] [--frames FOLDER]\n"
                    "ride_sheet LEVEL --pace [--seed N]\n");
        return 1;
    }
    return RunApplication(ArgCount, Args, CreateRideGame);
}
