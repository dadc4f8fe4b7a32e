// A program that a test starts, with a working directory, variables and output of its own.
//
// Standard output and standard error go into one file in the order of writing. The destructor ends the program if it
// still runs, so a test that fails leaves nothing behind. Waiting is bounded: a program that hangs fails its case.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>

class CProgram {
public:
    using CVariables = std::map<std::string, std::string>;

    // Starts Executable without arguments. Variables are added to those of the test. OutputFile is made anew.
    CProgram(const std::filesystem::path& Executable, const std::filesystem::path& WorkingDir,
             const std::filesystem::path& OutputFile, const CVariables& Variables = {});
    ~CProgram();
    CProgram(const CProgram&) = delete;
    CProgram& operator=(const CProgram&) = delete;

    // The exit code, or 128 plus the signal's number; nothing if it still runs after that time.
    std::optional<int> WaitForEnd(double Seconds);
    bool IsRunning() { return !WaitForEnd(0.0); }

    // What it has written so far.
    std::string Output() const;

private:
    pid_t Process = -1;
    std::optional<int> Code;
    std::filesystem::path OutputFile;
};

// The whole file, or an empty text if there is none.
std::string ReadFileText(const std::filesystem::path& Path);
