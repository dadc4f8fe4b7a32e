// What the program says: a line on standard output, or the fatal error that ends it.
//
// LogPrintf writes to standard output. A formatted text is cut at LOG_BUFFER - 1 characters, as is the text in the box
// of a fatal error; error.log gets all of it.
// FatalError is the only way to report what stops a run: it appends the text to error.log in the working directory,
// shows it in a box titled "Error!" and ends the process with FATAL_EXIT_CODE (222 for a shell). Shut-down functions do
// not run. If error.log can't be written the box is shown all the same.
// G_ASSERT is for wrong calls and stays active in every build. Neither is reentrant; the program has one thread.
#pragma once

#include "foundation/Types.h"

constexpr int LOG_BUFFER = 16 * 1024;
constexpr UINT32 FATAL_EXIT_CODE = 0xBADDC0DE;

void LogPrintf(const char* Format, ...) __attribute__((format(printf, 1, 2)));
[[noreturn]] void FatalError(const char* Format, ...) __attribute__((format(printf, 1, 2)));

// The second half of FatalError, for what does not belong into the log.
[[noreturn]] void FatalBox(const char* Text);

#define G_ASSERT(Expression)                                                                                           \
    ((Expression) ? static_cast<void>(0) : FatalError("-ASSERT-\nThis test expression is false:\n%s\n", #Expression))
