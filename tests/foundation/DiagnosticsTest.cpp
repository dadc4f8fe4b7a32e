#include "FoundationFixture.h"

#include <cstring>

namespace {

// What a shell sees of 0xBADDC0DE.
constexpr int FATAL_STATUS = 222;

// Fatal errors happen in a child process, which shares the working directory; the box goes to its standard error.
class Diagnostics : public TempDirTest {
protected:
    Diagnostics() {
        GPlatform.ShowError = [](const char* Title, const char* Text) {
            std::fprintf(stderr, "[%s][%zu][%s]\n", Title, std::strlen(Text), Text);
        };
    }
    ~Diagnostics() override { PlatformRestore(); }
};

} // namespace

#define EXPECT_FATAL(Statement, Text) EXPECT_EXIT(Statement, testing::ExitedWithCode(FATAL_STATUS), Text)

TEST(Log, FormatsOntoStandardOutput) {
    EXPECT_EQ(PrintedBy([] { LogPrintf("%d trees, %s\n", 12, "100%"); }), "12 trees, 100%\n");
}

TEST(Log, CutsWhatIsTooLong) {
    const std::string Long(LOG_BUFFER + 1000, 'x');
    EXPECT_EQ(PrintedBy([&] { LogPrintf("%s", Long.c_str()); }), Long.substr(0, LOG_BUFFER - 1));
    const std::string Fits(LOG_BUFFER - 1, 'y');
    EXPECT_EQ(PrintedBy([&] { LogPrintf("%s", Fits.c_str()); }), Fits);
}

TEST_F(Diagnostics, FatalErrorIsLoggedShownAndEndsTheProcess) {
    EXPECT_FATAL(FatalError("No mesh %s (%d)\n", "pine", 7), "\\[Error!\\]\\[17\\]\\[No mesh pine \\(7\\)");
    EXPECT_EQ(ReadBack("error.log"), "No mesh pine (7)\n");
}

TEST_F(Diagnostics, ErrorLogCollectsTheRuns) {
    WriteFile("error.log", "from an earlier run\n");
    EXPECT_FATAL(FatalError("first. "), "first");
    EXPECT_FATAL(FatalError("second.\n"), "second");
    EXPECT_EQ(ReadBack("error.log"), "from an earlier run\nfirst. second.\n");
}

TEST_F(Diagnostics, LongFatalTextIsCutInTheBoxAndWholeInTheLog) {
    const std::string Long(3 * LOG_BUFFER, 'z');
    EXPECT_FATAL(FatalError("%s", Long.c_str()), "\\[Error!\\]\\[16383\\]\\[zzz");
    EXPECT_EQ(ReadBack("error.log"), Long);
}

TEST_F(Diagnostics, BoxAppearsWhereTheLogCannotBeWritten) {
    std::filesystem::create_directory("error.log");
    EXPECT_FATAL(FatalError("still seen"), "\\[Error!\\]\\[10\\]\\[still seen\\]");
}

TEST_F(Diagnostics, FatalBoxLeavesNoLog) {
    EXPECT_FATAL(FatalBox("C_SysFileOpen error\n"), "\\[Error!\\]\\[20\\]\\[C_SysFileOpen error\n\\]");
    EXPECT_FALSE(std::filesystem::exists("error.log"));
}

TEST_F(Diagnostics, AssertTellsTheExpressionAndRunsItOnce) {
    int Runs = 0;
    G_ASSERT(++Runs == 1);
    EXPECT_EQ(Runs, 1);
    EXPECT_FALSE(std::filesystem::exists("error.log"));
    const int TrackCount = 0;
    EXPECT_FATAL(G_ASSERT(TrackCount != 0), "-ASSERT-");
    EXPECT_EQ(ReadBack("error.log"), "-ASSERT-\nThis test expression is false:\nTrackCount != 0\n");
}
