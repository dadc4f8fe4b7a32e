#include "platform/Platform.h"
#include "support/Common.h"

namespace {

using PlatformFiles = TempDirTest;

bool Opens(const std::string& Path, const char* Mode) {
    FILE* File = PlatOpenFile(Path.c_str(), Mode);
    return File && std::fclose(File) == 0;
}

TEST_F(PlatformFiles, BackslashesAreSlashes) {
    fs::create_directories("Data/Models");
    EXPECT_TRUE(Opens("Data\\Models\\tree.mdd", "w"));
    EXPECT_TRUE(fs::exists("Data/Models/tree.mdd"));
    EXPECT_TRUE(PlatChangeDir("Data\\Models"));
    EXPECT_TRUE(Opens("tree.mdd", "r"));
    EXPECT_FALSE(Opens("none.txt", "r") || PlatChangeDir("none") || PlatChangeDir(""));
    char Buffer[PLAT_MAX_PATH];
    ASSERT_TRUE(PlatGetDir(Buffer, sizeof(Buffer)));
    EXPECT_EQ(Dir / "Data/Models", Buffer);
    EXPECT_FALSE(PlatGetDir(Buffer, 2));
}

// Of a path that doesn't fit nothing is used: its start may well name a file that exists.
TEST_F(PlatformFiles, OverlongPathFails) {
    std::string Path;
    while (Path.size() < PLAT_MAX_PATH) {
        Path += "./";
    }
    EXPECT_FALSE(PlatChangeDir(Path.c_str()) || Opens(Path + "new.txt", "w"));
    EXPECT_TRUE(PlatChangeDir(Path.substr(0, PLAT_MAX_PATH - 1).c_str()));
}

// With a dialog, which is a script here, and without one: that takes the files of a folder in turns.
TEST_F(PlatformFiles, AreChosenByAProgramOrOneAfterTheOther) {
    const std::string Path = std::getenv("PATH"), Folder = Dir.string() + "/";
    char Buffer[64] = "";
    const auto Choose = [&](const char* Dialog) {
        WriteText("kdialog", Dialog);
        fs::permissions("kdialog", fs::perms::owner_all);
        return GPlatform.ChooseFile("Title", "Filter", ".mdd", Folder.c_str(), Buffer, 64);
    };
    setenv("PATH", Folder.c_str(), 1);
    setenv("DISPLAY", ":none", 0);
    EXPECT_EQ(Choose("#!/bin/sh\nexit 127"), EFileChoice::Cancelled); // nothing to choose from
    WriteText("a.mdd", "");
    WriteText("b.mdd", "");
    for (const char* Name : {"a.mdd", "b.mdd", "a.mdd"}) {
        EXPECT_EQ(Choose("#!/bin/sh\nexit 127"), EFileChoice::Chosen);
        EXPECT_EQ(Buffer, Folder + Name);
    }
    EXPECT_EQ(Choose("#!/bin/sh\necho /tmp/rock.mdd"), EFileChoice::Chosen);
    EXPECT_EQ(Choose("#!/bin/sh\necho $2; exit 1"), EFileChoice::Cancelled);
    EXPECT_EQ(Choose("#!/bin/sh\nexit 5"), EFileChoice::Failed);
    EXPECT_STREQ(Buffer, "/tmp/rock.mdd");
    setenv("PATH", Path.c_str(), 1);
}

TEST(PlatformTest, ExecutablePathIsThisProgram) {
    char Buffer[PLAT_MAX_PATH];
    PlatExecutablePath(Buffer, sizeof(Buffer), "fallback");
    EXPECT_TRUE(fs::equivalent(Buffer, "/proc/self/exe") && fs::path(Buffer).is_absolute());
}

TEST(PlatformTest, RandomNumbersBeginAsKnown) {
    PlatSeedRand(1);
    for (const int Wanted : {41, 18467, 6334, 26500, 19169}) {
        EXPECT_EQ(PlatRand(), Wanted);
    }
    PlatSeedRand(1);
    EXPECT_EQ(PlatRandUnit(), static_cast<float>(41 / 32767.0));
}

// Without a display nothing may wait for a person.
TEST(PlatformTest, ServicesAreReplacedAndPutBack) {
    const char* Display = std::getenv("DISPLAY");
    const std::string Kept = Display ? Display : "";
    unsetenv("DISPLAY");
    GPlatform.AskYesNo = [](const char*, const char*, bool Default) { return !Default; };
    GPlatform.ShowError = [](const char*, const char*) {};
    EXPECT_TRUE(GPlatform.AskYesNo("", "", false));
    PlatformRestore();
    EXPECT_FALSE(PlatHasDisplay());
    EXPECT_TRUE(GPlatform.AskYesNo("Title", "Text", true));
    EXPECT_FALSE(GPlatform.AskYesNo("Title", "Text", false));
    testing::internal::CaptureStderr();
    GPlatform.ShowError("Error!", "no slope");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error!\nno slope\n");
    if (Display) {
        setenv("DISPLAY", Kept.c_str(), 1);
    }
}

TEST(PlatformDeathTest, FailedAssertionNamesTextFileAndLine) {
    EXPECT_DEATH(PlatAssertFailed("a < b", "GTemplate", 12), "Assertion failed: a < b, file GTemplate, line 12");
}

} // namespace
