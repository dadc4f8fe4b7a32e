// Plays the shipped levels without a picture, many times faster than a player could, and says how that went.
//
//     ride_bots [--level 1..5] [--seeds N]
//         every skill on N woods of each level (50); prints a table in markdown
//     ride_bots --wander SECONDS [--anywhere] [--level 1..5]
//         a rider without a plan for so many seconds of game time on each level; every run that leaves the terrain,
//         falls through it or gets stuck is printed with its place, and makes the program fail. So does a message of
//         the game's. A run begins where an average rider is some time after the start; with --anywhere, wherever the
//         rider is put down.
//
// Needs a display with OpenGL, and the data beside the program.
#include "LevelStage.h"
#include "bots/Ride.h"
#include "bots/Wander.h"
#include "game/GameState.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

struct SWishes {
    UINT32 FirstLevel = 0;
    UINT32 EndLevel = LEVEL_COUNT;
    UINT32 Seeds = 50;
    float Wander = 0; // seconds; 0: the table
    EStart Start = EStart::OnTheWay;
};

// What the program itself writes; standard output is put aside so that the game's own messages are seen to be there.
FILE* Report = nullptr;
FILE* GameSays = nullptr;

bool PutOutputAside() {
    Report = fdopen(dup(STDOUT_FILENO), "w");
    GameSays = std::tmpfile();
    return Report && GameSays && dup2(fileno(GameSays), STDOUT_FILENO) >= 0;
}

// Bytes that the game has said so far.
long GameSaid() {
    std::fflush(stdout);
    std::fseek(GameSays, 0, SEEK_END);
    return std::ftell(GameSays);
}

void TellGameMessages(long First) {
    std::fseek(GameSays, First, SEEK_SET);
    for (int Byte = std::fgetc(GameSays); Byte != EOF; Byte = std::fgetc(GameSays)) {
        std::fputc(Byte, Report);
    }
}

template <class T>
T Median(std::vector<T> Values) {
    std::nth_element(Values.begin(), Values.begin() + Values.size() / 2, Values.end());
    return Values[Values.size() / 2];
}

template <class T>
void PrintRange(const char* Format, const std::vector<T>& Values) {
    if (Values.empty()) {
        std::fprintf(Report, " - |");
        return;
    }
    const auto [Least, Most] = std::minmax_element(Values.begin(), Values.end());
    std::fprintf(Report, Format, *Least, Median(Values), *Most);
}

void PrintRow(UINT32 Level, const SSkill& Skill, const std::vector<SRide>& Rides) {
    std::vector<float> Times;
    std::vector<UINT32> Trees;
    std::size_t Wins = 0, Late = 0;
    for (const SRide& Ride : Rides) {
        Trees.push_back(Ride.Trees);
        Wins += Ride.Won;
        Late += !Ride.Finished;
        if (Ride.Finished) {
            Times.push_back(Ride.Time);
        }
    }
    const SLevelRecord& Record = GLevels[Level];
    std::fprintf(Report, "| %u | %s | %zu of %zu | %zu | %zu |", Level + 1, Skill.Name, Wins, Rides.size(), Late,
                 Rides.size() - Wins - Late);
    PrintRange(" %.0f / %.0f / %.0f |", Times);
    std::fprintf(Report, " %.0f |", Record.TimeLimit);
    PrintRange(" %u / %u / %u |", Trees);
    std::fprintf(Report, " %u |\n", Record.Quota);
    std::fflush(Report);
}

void PrintTable(const SWishes& Wishes) {
    std::fprintf(Report, "| Level | Rider | Won | Out of time | Too few trees | Seconds, least / median / most | of | "
                         "Trees, least / median / most | of |\n|---|---|---|---|---|---|---|---|---|\n");
    for (UINT32 Level = Wishes.FirstLevel; Level < Wishes.EndLevel; ++Level) {
        for (const SSkill& Skill : Skills) {
            std::vector<SRide> Rides;
            for (UINT32 Seed = 1; Seed <= Wishes.Seeds; ++Seed) {
                Rides.push_back(RideLevel(Level, Seed, Skill));
            }
            PrintRow(Level, Skill, Rides);
        }
    }
}

// The number of faults.
std::size_t WanderLevel(UINT32 Level, const SWishes& Wishes) {
    const auto Before = std::chrono::steady_clock::now();
    const SWander Result = Wander(Level, Wishes.Wander, Wishes.Start);
    const std::chrono::duration<float> Took = std::chrono::steady_clock::now() - Before;
    std::fprintf(Report,
                 "level %u: %.0f s of game time (%.0f a second), %u runs, %u to the end; longest rest %.1f s, least "
                 "height over the ground %.1f, farthest aside %.2f; %zu faults\n",
                 Level + 1, Result.Time, Result.Time / Took.count(), Result.Runs, Result.Ends, Result.Watch.LongestRest,
                 Result.Watch.LeastHeight, Result.Watch.FarthestSide, Result.Faults.size());
    for (const SFault& Fault : Result.Faults) {
        std::fprintf(Report, "  %s at %.0f %.0f %.0f, run %u after %.1f s\n", Fault.What.c_str(), Fault.Place.x,
                     Fault.Place.y, Fault.Place.z, Fault.Seed, Fault.Time);
    }
    std::fflush(Report);
    return Result.Faults.size();
}

int WanderLevels(const SWishes& Wishes) {
    std::size_t Faults = 0;
    for (UINT32 Level = Wishes.FirstLevel; Level < Wishes.EndLevel; ++Level) {
        Faults += WanderLevel(Level, Wishes);
    }
    return Faults == 0 ? 0 : 1;
}

bool ReadWish(const char* Key, const char* Value, SWishes& Wishes) {
    const int Number = Value ? std::atoi(Value) : 0;
    if (Number < 1) {
        return false;
    }
    if (std::strcmp(Key, "--level") == 0) {
        Wishes.FirstLevel = static_cast<UINT32>(Number - 1);
        Wishes.EndLevel = static_cast<UINT32>(Number);
        return Wishes.EndLevel <= LEVEL_COUNT;
    }
    if (std::strcmp(Key, "--seeds") == 0) {
        Wishes.Seeds = static_cast<UINT32>(Number);
        return true;
    }
    Wishes.Wander = static_cast<float>(Number);
    return std::strcmp(Key, "--wander") == 0;
}

bool ReadWishes(int ArgCount, char** Args, SWishes& Wishes) {
    for (int i = 1; i < ArgCount; ++i) {
        if (std::strcmp(Args[i], "--anywhere") == 0) {
            Wishes.Start = EStart::Anywhere;
        } else if (!ReadWish(Args[i], i + 1 < ArgCount ? Args[i + 1] : nullptr, Wishes)) {
            return false;
        } else {
            ++i;
        }
    }
    return true;
}

} // namespace

int main(int ArgCount, char** Args) {
    SWishes Wishes;
    if (!ReadWishes(ArgCount, Args, Wishes)) {
        std::printf("ride_bots [--level 1..5] [--seeds N]\n"
                    "ride_bots --wander SECONDS [--anywhere] [--level 1..5]\n");
        return 2;
    }
    if (!PutOutputAside()) {
        std::fprintf(stderr, "ride_bots: no temporary file can be made\n");
        return 2;
    }
    const SGameStage Stage;
    if (!Stage.Ready) {
        std::fprintf(stderr, "ride_bots: needs a display with OpenGL, and the data beside it\n");
        return 2;
    }
    const long Before = GameSaid(); // the growing tree tells what it grows
    int Status = 0;
    if (Wishes.Wander > 0) {
        Status = WanderLevels(Wishes);
    } else {
        PrintTable(Wishes);
    }
    if (GameSaid() > Before) {
        TellGameMessages(Before);
        Status = 1;
    }
    return Status;
}
