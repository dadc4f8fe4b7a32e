#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

// Files are made in a folder of their own, which is the working directory meanwhile.
class PlatformFiles : public testing::Test {
protected:
    void SetUp() override {
        std::string Name = (std::filesystem::temp_directory_path() / "platformXXXXXX").string();
        ASSERT_NE(mkdtemp(Name.data()), nullptr);
        Folder = std::filesystem::canonical(Name);
        std::filesystem::create_directories(Folder / "Data" / "Models");
        ASSERT_TRUE(PlatChangeDir(Folder.c_str()));
    }
    void TearDown() override {
        std::filesystem::current_path(Before);
        std::filesystem::remove_all(Folder);
    }
    static bool Opens(const std::string& Path, const char* Mode) {
        FILE* File = PlatOpenFile(Path.c_str(), Mode);
        return File && std::fclose(File) == 0;
    }
    std::filesystem::path Before = std::filesystem::current_path();
    std::filesystem::path Folder;
};

TEST_F(PlatformFiles, BackslashesAreSlashes) {
    EXPECT_TRUE(Opens("Data\\Models\\tree.mdd", "w"));
    EXPECT_TRUE(std::filesystem::exists(Folder / "Data/Models/tree.mdd"));
    EXPECT_TRUE(PlatChangeDir("Data\\Models"));
    EXPECT_TRUE(Opens("tree.mdd", "r"));
    EXPECT_FALSE(Opens("none.txt", "r") || PlatChangeDir("none") || PlatChangeDir(""));
    char Buffer[PLAT_MAX_PATH];
    ASSERT_TRUE(PlatGetDir(Buffer, sizeof(Buffer)));
    EXPECT_EQ(Folder / "Data/Models", Buffer);
    EXPECT_FALSE(PlatGetDir(Buffer, 2));
}

// Of a path that doesn't fit nothing is used: its start may well name a file that exists.
TEST_F(PlatformFiles, OverlongPathFails) {
    std::string Path = "Data/";
    while (Path.size() < PLAT_MAX_PATH) {
        Path += "./";
    }
    EXPECT_FALSE(PlatChangeDir(Path.c_str()));
    EXPECT_FALSE(Opens(Path + "new.txt", "w"));
    EXPECT_TRUE(PlatChangeDir(Path.substr(0, PLAT_MAX_PATH - 1).c_str()));
}

TEST(PlatformTest, ExecutablePathIsThisProgram) {
    char Buffer[PLAT_MAX_PATH];
    PlatExecutablePath(Buffer, sizeof(Buffer), "fallback");
    EXPECT_TRUE(std::filesystem::equivalent(Buffer, "/proc/self/exe"));
    EXPECT_TRUE(std::filesystem::path(Buffer).is_absolute());
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
