// Tree scripts: any text grows a tree or ends with a message.
//
// The script's first line is given, so that no later one can load a picture, which takes a context. A message ends the
// program by its nature; here it returns to the start instead, and what the script held is lost.
#include "meshgen/TreeMeshGen.h"
#include "platform/Platform.h"

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

static std::jmp_buf Stopped;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Bytes, std::size_t Size) {
    constexpr const char* SCRIPT = "fuzz-treescript.mgn";
    const std::string Text = "shade part=0 ps=M vs=M part=1 ps=F vs=F\n" + std::string(Bytes, Bytes + Size);
    FILE* File = PlatOpenFile(SCRIPT, "wb");
    if (!File) {
        return -1;
    }
    std::fwrite(Text.data(), 1, Text.size(), File);
    std::fclose(File);
    GPlatform.ShowError = [](const char*, const char*) { std::longjmp(Stopped, 1); };
    if (setjmp(Stopped) == 0) {
        STreeMeshGen Tree;
        Tree.Generate(SCRIPT);
    }
    return 0;
}
