// The generator as the build calls it: same bytes each time, nothing left behind, and a word where it can't.
#include "assets/GameFiles.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class AssetGen : public ::testing::Test {
protected:
    void SetUp() override {
        Folder = fs::temp_directory_path() / ("assetgen-" + std::to_string(getpid()));
        fs::create_directories(Folder);
    }
    void TearDown() override { fs::remove_all(Folder); }

    static int Run(const std::string& Arguments) {
        const int Status = std::system((SLOPERUSH_ASSETGEN " " + Arguments + " 2>/dev/null").c_str());
        return WEXITSTATUS(Status);
    }

    std::map<std::string, std::string> Files() const {
        std::map<std::string, std::string> Found;
        for (const auto& Entry : fs::recursive_directory_iterator(Folder)) {
            if (Entry.is_regular_file()) {
                Found[fs::relative(Entry.path(), Folder).string()] = FileBytes(Entry.path());
            }
        }
        return Found;
    }

    fs::path Folder;
};

TEST_F(AssetGen, MakesTheBytesThatTheBuildMade) {
    ASSERT_EQ(Run(Folder.string()), 0);
    const auto Made = Files();
    EXPECT_FALSE(Made.empty());
    for (const auto& [Path, Bytes] : Made) {
        EXPECT_TRUE(Bytes == FileBytes(GamePath("Data/" + Path))) << Path;
    }
}

TEST_F(AssetGen, OnePathMakesOneFile) {
    ASSERT_EQ(Run(Folder.string() + " Terrain/Slope1.png"), 0);
    const auto Made = Files();
    ASSERT_EQ(Made.size(), 1u);
    EXPECT_EQ(Made.begin()->first, "Terrain/Slope1.png");
}

TEST_F(AssetGen, RefusesAPathThatIsNotInTheTable) {
    EXPECT_EQ(Run(Folder.string() + " Terrain/Nowhere.png"), 1);
    EXPECT_TRUE(Files().empty());
}

TEST_F(AssetGen, SaysSoWhereItCannotWrite) {
    EXPECT_EQ(Run("/dev/null/folder Terrain/Slope1.png"), 1);
}

TEST(GameData, LevelsAndTerrainFilesNameFilesThatExist) {
    for (const SGameLevel& Level : ShippedLevels()) {
        EXPECT_TRUE(fs::exists(GamePath(Level.Params.SkyFile.CStr()))) << Level.Path;
        EXPECT_TRUE(fs::exists(GamePath(Level.Terrain.Picture.CStr()))) << Level.Path;
        for (const GString& Detail : Level.Terrain.Details) {
            EXPECT_TRUE(fs::exists(GamePath(Detail.CStr()))) << Detail.CStr();
        }
    }
}

} // namespace
