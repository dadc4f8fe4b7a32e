#include "platform/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

// A pipe from a child's standard output; both ends are -1 if it is not wanted or can't be made. A program that another
// one starts does not inherit the ends.
struct SPipe {
    explicit SPipe(bool Wanted) {
        if (Wanted && pipe2(Ends, O_CLOEXEC) != 0) {
            Ends[0] = Ends[1] = -1;
        }
    }
    ~SPipe() {
        CloseEnd(0);
        CloseEnd(1);
    }
    SPipe(const SPipe&) = delete;
    SPipe& operator=(const SPipe&) = delete;

    void CloseEnd(int End) {
        if (Ends[End] >= 0) {
            close(Ends[End]);
            Ends[End] = -1;
        }
    }

    // Until the child has closed its end.
    std::string ReadAll() {
        std::string Text;
        char Piece[4096];
        for (ssize_t Bytes; Ends[0] >= 0 && (Bytes = read(Ends[0], Piece, sizeof(Piece))) > 0;) {
            Text.append(Piece, static_cast<std::size_t>(Bytes));
        }
        return Text;
    }

    int Ends[2] = {-1, -1}; // to read from, to write to
};

int WaitFor(pid_t Child) {
    int Status = 0;
    if (waitpid(Child, &Status, 0) != Child || !WIFEXITED(Status)) {
        return EXIT_NO_SUCH_PROGRAM;
    }
    return WEXITSTATUS(Status);
}

} // namespace

int RunProgram(std::initializer_list<const char*> Words, std::string* Output) {
    constexpr int MAX_WORDS = 12;
    char* Arguments[MAX_WORDS] = {};
    int Count = 0;
    for (const char* Word : Words) {
        if (Count < MAX_WORDS - 1) {
            Arguments[Count++] = const_cast<char*>(Word);
        }
    }
    SPipe Pipe(Output != nullptr);
    posix_spawn_file_actions_t Actions;
    posix_spawn_file_actions_init(&Actions);
    if (Pipe.Ends[1] >= 0) {
        posix_spawn_file_actions_adddup2(&Actions, Pipe.Ends[1], STDOUT_FILENO);
    }
    pid_t Child = 0;
    const int Error = posix_spawnp(&Child, Arguments[0], &Actions, nullptr, Arguments, environ);
    posix_spawn_file_actions_destroy(&Actions);
    if (Error != 0) {
        return EXIT_NO_SUCH_PROGRAM;
    }
    Pipe.CloseEnd(1);
    if (Output) {
        *Output = Pipe.ReadAll();
    }
    return WaitFor(Child);
}
