#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

namespace {

// Files are made in a folder of their own, which is the working directory meanwhile.
class PlatformFiles : public testing::Test {
protected:
    void SetUp() override {
        Before = std::filesystem::current_path();
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

    static bool Opens(const char* Path, const char* Mode) {
        FILE* File = PlatOpenFile(Path, Mode);
        if (File) {
            std::fclose(File);
        }
        return File != nullptr;
    }

    std::filesystem::path Before;
    std::filesystem::path Folder;
};

TEST_F(PlatformFiles, BackslashesAreSlashes) {
    EXPECT_TRUE(Opens("Data\\Models\\tree.mdd", "w"));
    EXPECT_TRUE(std::filesystem::exists(Folder / "Data/Models/tree.mdd"));
    EXPECT_TRUE(Opens("Data/Models\\tree.mdd", "r"));
    EXPECT_TRUE(PlatChangeDir("Data\\Models"));
    EXPECT_TRUE(Opens("tree.mdd", "r"));
}

TEST_F(PlatformFiles, MissingFilesAndFoldersFail) {
    EXPECT_FALSE(Opens("none.txt", "r"));
    EXPECT_FALSE(PlatChangeDir("none"));
    EXPECT_FALSE(PlatChangeDir(""));
}

// Of a path that doesn't fit nothing is used: its start may well name a file that exists.
TEST_F(PlatformFiles, OverlongPathFails) {
    std::string Path = "Data/";
    while (Path.size() < PLAT_MAX_PATH) {
        Path += "./";
    }
    EXPECT_FALSE(PlatChangeDir(Path.c_str()));
    EXPECT_FALSE(Opens((Path + "new.txt").c_str(), "w"));
    Path.resize(PLAT_MAX_PATH - 1);
    EXPECT_TRUE(PlatChangeDir(Path.c_str()));
}

TEST_F(PlatformFiles, TellsTheWorkingDirectory) {
    char Buffer[PLAT_MAX_PATH];
    ASSERT_TRUE(PlatGetDir(Buffer, sizeof(Buffer)));
    EXPECT_EQ(Folder, Buffer);
    EXPECT_FALSE(PlatGetDir(Buffer, 2));
}

TEST(PlatformTest, ExecutablePathIsThisProgram) {
    char Buffer[PLAT_MAX_PATH];
    PlatExecutablePath(Buffer, sizeof(Buffer), "fallback");
    EXPECT_EQ(std::filesystem::path(Buffer).filename(), "test_platform");
    EXPECT_TRUE(std::filesystem::path(Buffer).is_absolute());
    char Small[8];
    PlatExecutablePath(Small, sizeof(Small), "fallback");
    EXPECT_LT(std::strlen(Small), sizeof(Small));
}

TEST(PlatformTest, RandomNumbersBeginAsKnown) {
    for (int Round = 0; Round < 2; ++Round) {
        PlatSeedRand(1);
        for (const int Wanted : {41, 18467, 6334, 26500, 19169}) {
            EXPECT_EQ(PlatRand(), Wanted);
        }
    }
}

TEST(PlatformTest, RandomNumbersKeepTheirRange) {
    PlatSeedRand(123);
    int Largest = 0;
    double Sum = 0;
    constexpr int COUNT = 100000;
    for (int i = 0; i < COUNT; ++i) {
        const float Unit = PlatRandUnit();
        ASSERT_GE(Unit, 0.0f);
        ASSERT_LE(Unit, 1.0f);
        Sum += Unit;
        const int Number = PlatRand();
        ASSERT_GE(Number, 0);
        ASSERT_LE(Number, PLAT_RAND_MAX);
        Largest = Number > Largest ? Number : Largest;
    }
    EXPECT_GT(Largest, PLAT_RAND_MAX - 20);
    EXPECT_NEAR(Sum / COUNT, 0.5, 0.01);
    PlatSeedRand(1);
    EXPECT_EQ(PlatRandUnit(), static_cast<float>(41 / 32767.0));
}

TEST(PlatformTest, ServicesAreReplacedAndPutBack) {
    static std::string Shown;
    Shown.clear();
    const SPlatformServices Real = GPlatform;
    GPlatform.ShowError = [](const char* Title, const char* Text) { Shown = std::string(Title) + Text; };
    GPlatform.AskYesNo = [](const char*, const char*, bool Default) { return !Default; };
    GPlatform.Ticks = [] { return std::uint32_t{12}; };
    GPlatform.ShowError("Error!", "text");
    EXPECT_EQ(Shown, "Error!text");
    EXPECT_TRUE(GPlatform.AskYesNo("", "", false));
    EXPECT_EQ(GPlatform.Ticks(), 12u);
    PlatformRestore();
    EXPECT_EQ(GPlatform.ShowError, Real.ShowError);
    EXPECT_EQ(GPlatform.AskYesNo, Real.AskYesNo);
    EXPECT_EQ(GPlatform.Ticks, Real.Ticks);
}

// Without a display nothing may wait for a person.
class PlatformWithoutDisplay : public testing::Test {
protected:
    void SetUp() override {
        const char* Value = std::getenv("DISPLAY");
        Display = Value ? Value : "";
        unsetenv("DISPLAY");
    }
    void TearDown() override {
        if (!Display.empty()) {
            setenv("DISPLAY", Display.c_str(), 1);
        }
    }
    std::string Display;
};

TEST_F(PlatformWithoutDisplay, QuestionsTakeTheirDefault) {
    EXPECT_FALSE(PlatHasDisplay());
    EXPECT_TRUE(GPlatform.AskYesNo("Title", "Text", true));
    EXPECT_FALSE(GPlatform.AskYesNo("Title", "Text", false));
}

TEST_F(PlatformWithoutDisplay, ErrorsGoToStandardError) {
    testing::internal::CaptureStderr();
    GPlatform.ShowError("Error!", "no slope");
    const std::string Text = testing::internal::GetCapturedStderr();
    EXPECT_NE(Text.find("Error!"), std::string::npos);
    EXPECT_NE(Text.find("no slope"), std::string::npos);
}

TEST(PlatformDeathTest, FailedAssertionNamesTextFileAndLine) {
    EXPECT_DEATH(PlatAssertFailed("a < b", "GTemplate", 12), "Assertion failed: a < b, file GTemplate, line 12");
}

} // namespace
