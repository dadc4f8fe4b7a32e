#include "support/Program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int EXIT_NOT_STARTED = 127;
constexpr int SIGNAL_BASE = 128;
constexpr std::chrono::milliseconds POLL_PAUSE(20);

// In the new process: never returns.
[[noreturn]] void Become(const std::filesystem::path& Executable, const std::filesystem::path& WorkingDir,
                         const std::filesystem::path& OutputFile, const CProgram::CVariables& Variables) {
    const int Output = open(OutputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0644);
    if (Output >= 0 && chdir(WorkingDir.c_str()) == 0) {
        dup2(Output, STDOUT_FILENO);
        dup2(Output, STDERR_FILENO);
        for (const auto& [Name, Value] : Variables) {
            setenv(Name.c_str(), Value.c_str(), 1);
        }
        execl(Executable.c_str(), Executable.c_str(), static_cast<char*>(nullptr));
    }
    _exit(EXIT_NOT_STARTED);
}

} // namespace

CProgram::CProgram(const std::filesystem::path& Executable, const std::filesystem::path& WorkingDir,
                   const std::filesystem::path& OutputFile, const CVariables& Variables)
    : OutputFile(OutputFile) {
    Process = fork();
    if (Process == 0) {
        Become(Executable, WorkingDir, OutputFile, Variables);
    }
}

CProgram::~CProgram() {
    if (IsRunning()) {
        kill(Process, SIGKILL);
        waitpid(Process, nullptr, 0);
    }
}

std::optional<int> CProgram::WaitForEnd(double Seconds) {
    const auto Limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(Seconds);
    while (!Code) {
        int Status = 0;
        if (Process < 0) {
            Code = EXIT_NOT_STARTED;
        } else if (waitpid(Process, &Status, WNOHANG) == Process) {
            Code = WIFEXITED(Status) ? WEXITSTATUS(Status) : SIGNAL_BASE + WTERMSIG(Status);
        } else if (std::chrono::steady_clock::now() >= Limit) {
            break;
        } else {
            std::this_thread::sleep_for(POLL_PAUSE);
        }
    }
    return Code;
}

std::string CProgram::Output() const {
    return ReadFileText(OutputFile);
}

std::string ReadFileText(const std::filesystem::path& Path) {
    std::ostringstream Text;
    Text << std::ifstream(Path, std::ios::binary).rdbuf();
    return Text.str();
}
