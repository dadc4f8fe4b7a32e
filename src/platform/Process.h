// Running another program and waiting for it. For the services of this folder only.
#pragma once

#include <initializer_list>
#include <string>

constexpr int EXIT_NO_SUCH_PROGRAM = 127;

// Runs a program that is looked up in PATH and waits for it. The result is its exit code; a program that is not
// installed or that died by a signal gives EXIT_NO_SUCH_PROGRAM. Its standard output goes into Output, or without one
// to where this program's goes.
int RunProgram(std::initializer_list<const char*> Words, std::string* Output = nullptr);
