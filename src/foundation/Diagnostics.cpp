#include "foundation/Diagnostics.h"

#include "platform/Platform.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void LogPrintf(const char* Format, ...) {
    char Text[LOG_BUFFER] = "";
    va_list Arguments;
    va_start(Arguments, Format);
    std::vsnprintf(Text, sizeof(Text), Format, Arguments);
    va_end(Arguments);
    std::fputs(Text, stdout);
}

void FatalError(const char* Format, ...) {
    va_list Arguments;
    va_start(Arguments, Format);
    if (FILE* Log = PlatOpenFile("error.log", "a")) {
        va_list ForLog;
        va_copy(ForLog, Arguments);
        std::vfprintf(Log, Format, ForLog);
        va_end(ForLog);
        std::fclose(Log);
    }
    char Text[LOG_BUFFER] = "";
    std::vsnprintf(Text, sizeof(Text), Format, Arguments);
    va_end(Arguments);
    FatalBox(Text);
}

void FatalBox(const char* Text) {
    GPlatform.ShowError("Error!", Text);
    std::exit(static_cast<int>(FATAL_EXIT_CODE));
}
