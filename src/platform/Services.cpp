#include "platform/Platform.h"
#include "platform/Process.h"

#include <SDL/SDL_timer.h>
#include <cstdlib>

namespace {

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

constexpr SPlatformServices REAL_SERVICES = {ShowErrorBox, AskYesNoBox, PlatChooseFile, SDL_GetTicks};

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
