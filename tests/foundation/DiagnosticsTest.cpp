#include "foundation/Diagnostics.h"
#include "foundation/FileDialog.h"
#include "support/Common.h"

namespace {

// Fatal errors happen in a child process, which shares the working directory; the box goes to its standard error.
class Diagnostics : public TempDirTest {
protected:
    Diagnostics() {
        GPlatform.ShowError = [](const char* Title, const char* Text) {
            std::fprintf(stderr, "[%s][%zu][%s]\n", Title, std::strlen(Text), Text);
        };
    }
};

TEST_F(Diagnostics, LogPrintfFormatsAndCutsWhatIsTooLong) {
    const std::string Long(LOG_BUFFER + 1000, 'x');
    EXPECT_EQ(PrintedBy([&] { LogPrintf("%d, %s\n", 12, "100%"); }), "12, 100%\n");
    EXPECT_EQ(PrintedBy([&] { LogPrintf("%s", Long.c_str()); }), Long.substr(0, LOG_BUFFER - 1));
}

TEST_F(Diagnostics, FatalErrorsAreShownAndCollectInTheLogWhichTakesThemWhole) {
    const std::string Long(3 * LOG_BUFFER, 'z');
    EXPECT_FATAL(FatalBox("C_SysFileOpen error\n"), "\\[Error!\\]\\[20\\]\\[C_SysFileOpen error\n\\]");
    EXPECT_FALSE(fs::exists("error.log"));
    EXPECT_FATAL(FatalError("No mesh %s (%d)\n", "pine", 7), "\\[Error!\\]\\[17\\]\\[No mesh pine \\(7\\)");
    EXPECT_FATAL(FatalError("%s", Long.c_str()), "\\[Error!\\]\\[16383\\]\\[zzz");
    EXPECT_EQ(ReadText("error.log"), "No mesh pine (7)\n" + Long);
    fs::remove("error.log");
    fs::create_directory("error.log");
    EXPECT_FATAL(FatalError("still seen"), "\\[Error!\\]\\[10\\]\\[still seen\\]");
}

TEST_F(Diagnostics, AMeshIsChosenBelowTheModelsOrNotAtAll) {
    static std::string Chosen;
    static EFileChoice Choice = EFileChoice::Chosen;
    GPlatform.ChooseFile = [](const char*, const char*, const char*, const char*, char* Buffer, int Size) {
        std::snprintf(Buffer, static_cast<std::size_t>(Size), "%s", Chosen.c_str());
        return Choice;
    };
    GString Path;
    for (const char* Name : {"Data/Models/Sub/a.mdd", "Data/a.mdd", "Data/Models/a b.mdd"}) {
        Chosen = (Dir / Name).string();
        const bool Says = !PrintedBy([&] { C_SysOpenModelFile(Path); }).empty();
        EXPECT_EQ(Says, Path == "Data/Models/Sub/a.mdd" && std::string(Name) != Path.CStr()) << Name;
    }
    Choice = EFileChoice::Cancelled;
    EXPECT_TRUE(!C_SysOpenModelFile(Path) && Path == "Data/Models/Sub/a.mdd");
    Choice = EFileChoice::Failed;
    EXPECT_FATAL(C_SysOpenModelFile(Path), "C_SysFileOpen error");
}

TEST_F(Diagnostics, AssertTellsTheExpressionAndRunsItOnce) {
    int Runs = 0;
    G_ASSERT(++Runs == 1);
    EXPECT_EQ(Runs, 1);
    EXPECT_FATAL(G_ASSERT(Runs != 1), "-ASSERT-");
    EXPECT_EQ(ReadText("error.log"), "-ASSERT-\nThis test expression is false:\nRuns != 1\n");
}

} // namespace
