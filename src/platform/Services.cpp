#include "platform/Platform.h"

#include <SDL/SDL_timer.h>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

constexpr int EXIT_NO_SUCH_PROGRAM = 127;

// Runs a program that is looked up in PATH and waits for it. The result is its exit code; a program that is not
// installed or that died by a signal gives EXIT_NO_SUCH_PROGRAM.
int RunProgram(std::initializer_list<const char*> Words) {
    constexpr int MAX_WORDS = 12;
    char* Arguments[MAX_WORDS] = {};
    int Count = 0;
    for (const char* Word : Words) {
        if (Count < MAX_WORDS - 1) {
            Arguments[Count++] = const_cast<char*>(Word);
        }
    }
    pid_t Child = 0;
    if (posix_spawnp(&Child, Arguments[0], nullptr, nullptr, Arguments, environ) != 0) {
        return EXIT_NO_SUCH_PROGRAM;
    }
    int Status = 0;
    if (waitpid(Child, &Status, 0) != Child || !WIFEXITED(Status)) {
        return EXIT_NO_SUCH_PROGRAM;
    }
    return WEXITSTATUS(Status);
}

void ShowErrorBox(const char* Title, const char* Text) {
    std::fprintf(stderr, "%s\n%s\n", Title, Text);
    if (!PlatHasDisplay()) {
        return;
    }
    // zenity and kdialog read markup only where asked to; the text of a driver may hold any character.
    if (RunProgram({"zenity", "--error", "--no-markup", "--title", Title, "--text", Text}) != EXIT_NO_SUCH_PROGRAM) {
        return;
    }
    if (RunProgram({"kdialog", "--title", Title, "--error", Text}) != EXIT_NO_SUCH_PROGRAM) {
        return;
    }
    RunProgram({"xmessage", "-title", Title, Text});
}

bool AskYesNoBox(const char* Title, const char* Text, bool Default) {
    if (!PlatHasDisplay()) {
        return Default;
    }
    int Code = RunProgram({"zenity", "--question", "--no-markup", "--title", Title, "--text", Text});
    if (Code == EXIT_NO_SUCH_PROGRAM) {
        Code = RunProgram({"kdialog", "--title", Title, "--yesno", Text});
    }
    if (Code == EXIT_NO_SUCH_PROGRAM) {
        return Default;
    }
    return Code == 0;
}

constexpr SPlatformServices REAL_SERVICES = {ShowErrorBox, AskYesNoBox, SDL_GetTicks};

} // namespace

SPlatformServices GPlatform = REAL_SERVICES;

void PlatformRestore() {
    GPlatform = REAL_SERVICES;
}

bool PlatHasDisplay() {
    const char* Display = std::getenv("DISPLAY");
    return Display && *Display;
}

void PlatAssertFailed(const char* Expression, const char* File, int Line) {
    std::fflush(stdout);
    std::fprintf(stderr, "Assertion failed: %s, file %s, line %d\n", Expression, File, Line);
    std::abort();
}
