// Measures the start of the program: from the creation of the process to the first picture in the window, phase by
// phase, and how fast pictures follow after it.
//
//     startup_times [runs]
//
// Each run is a fresh process of this same program, which plays the real game through the real start-up and leaves
// after a few more pictures of the first view. Printed are the medians in milliseconds. Needs a display and the data
// beside the executable.
#include "game/IGame.h"
#include "input/Input.h"
#include "shell/Application.h"

#include <GL/glew.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

enum EPhase { PHASE_MAIN, PHASE_SERVICES, PHASE_LEVEL, PHASE_PICTURE, PHASE_MORE, PHASE_COUNT };

const char* const PHASE_NAMES[PHASE_COUNT] = {
    "loading the libraries, up to main", "window, drivers and services",  "level: pictures, buffers, shaders",
    "first picture, drawn to the end",   "each of the pictures after it",
};

// Pictures of the last phase; enough to average over steps that fall into some of them.
constexpr int MORE_PICTURES = 60;

constexpr int DEFAULT_RUNS = 7;

// Seconds on a clock that all processes of the machine share.
double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double GPhaseEnd[PHASE_COUNT];

// Hands everything to the real game and notes when it did what.
class CTimedGame : public IGame {
public:
    explicit CTimedGame(IGame* Real) : Real(Real) {}
    ~CTimedGame() override { delete Real; }

    void Init() override {
        GPhaseEnd[PHASE_SERVICES] = Now();
        Real->Init();
        glFinish();
        GPhaseEnd[PHASE_LEVEL] = Now();
    }

    void Free() override { Real->Free(); }
    void Update(float Time, float Delta) override { Real->Update(Time, Delta); }

    void Render(float BlendDelta) override {
        Real->Render(BlendDelta);
        glFinish();
        GPhaseEnd[Pictures == 0 ? PHASE_PICTURE : PHASE_MORE] = Now();
        GQuit = Pictures == MORE_PICTURES;
        ++Pictures;
    }

private:
    IGame* Real;
    int Pictures = 0;
};

UINT32 CreateTimedGame() {
    const UINT32 Result = CreateGame();
    GGame = new CTimedGame(GGame);
    return Result;
}

// In the new process: plays, and prints the length of each phase to the descriptor.
int PlayOnce(char** Args, double Start, int Descriptor) {
    GPhaseEnd[PHASE_MAIN] = Now();
    const int Code = RunApplication(1, Args, CreateTimedGame);
    double Before = Start;
    for (int i = 0; i < PHASE_COUNT; ++i) {
        const int Parts = i == PHASE_MORE ? MORE_PICTURES : 1;
        dprintf(Descriptor, "%f\n", (GPhaseEnd[i] - Before) * 1000 / Parts);
        Before = GPhaseEnd[i];
    }
    return Code;
}

// The phases of one run in milliseconds; empty if it failed.
std::vector<double> MeasureRun(const char* Program) {
    int Pipe[2];
    if (pipe(Pipe) != 0) {
        return {};
    }
    const std::string Start = std::to_string(Now());
    const std::string Descriptor = std::to_string(Pipe[1]);
    char* Args[] = {const_cast<char*>(Program), const_cast<char*>("--play"), const_cast<char*>(Start.c_str()),
                    const_cast<char*>(Descriptor.c_str()), nullptr};
    pid_t Child = 0;
    const bool Started = posix_spawn(&Child, "/proc/self/exe", nullptr, nullptr, Args, environ) == 0;
    close(Pipe[1]);
    std::vector<double> Phases;
    FILE* Input = fdopen(Pipe[0], "r");
    double Value = 0;
    while (std::fscanf(Input, "%lf", &Value) == 1) {
        Phases.push_back(Value);
    }
    std::fclose(Input);
    int Status = 0;
    if (!Started || waitpid(Child, &Status, 0) != Child || Status != 0 || Phases.size() != PHASE_COUNT) {
        return {};
    }
    return Phases;
}

double Median(std::vector<double> Values) {
    std::sort(Values.begin(), Values.end());
    return Values[Values.size() / 2];
}

} // namespace

int main(int ArgCount, char** Args) {
    if (ArgCount == 4 && std::string(Args[1]) == "--play") {
        return PlayOnce(Args, std::atof(Args[2]), std::atoi(Args[3]));
    }
    const int Runs = ArgCount > 1 ? std::max(1, std::atoi(Args[1])) : DEFAULT_RUNS;
    std::vector<double> Times[PHASE_COUNT];
    std::vector<double> Starts;
    for (int Run = 0; Run < Runs; ++Run) {
        const std::vector<double> Phases = MeasureRun(Args[0]);
        if (Phases.empty()) {
            std::fprintf(stderr, "startup_times: the program did not run to its first picture\n");
            return 1;
        }
        for (int i = 0; i < PHASE_COUNT; ++i) {
            Times[i].push_back(Phases[static_cast<std::size_t>(i)]);
        }
        Starts.push_back(std::accumulate(Phases.begin(), Phases.begin() + PHASE_MORE, 0.0));
    }
    std::printf("medians of %d runs, milliseconds\n", Runs);
    for (int i = 0; i < PHASE_COUNT; ++i) {
        std::printf("%8.0f  %s\n", Median(Times[i]), PHASE_NAMES[i]);
    }
    std::printf("%8.0f  from the start to the first picture\n", Median(Starts));
    return 0;
}
