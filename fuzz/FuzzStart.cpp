// What every fuzz program does before its first input: bad data makes the readers print a line each time, and millions
// of lines would drown libFuzzer's own report, which goes to standard error.
#include "platform/Platform.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    if (!std::freopen("/dev/null", "w", stdout)) {
        std::abort();
    }
    GPlatform.ShowError = [](const char*, const char*) {};
    return 0;
}
