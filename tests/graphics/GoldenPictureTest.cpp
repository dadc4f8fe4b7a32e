// The comparison that guards all golden pictures is itself able to fail.
#include "support/GoldenPicture.h"

#include <IL/il.h>
#include <filesystem>

namespace {

class GoldenPictureTest : public ::testing::Test {
protected:
    void SetUp() override {
        ilInit();
        std::string Folder = (std::filesystem::temp_directory_path() / "sloperush-golden-XXXXXX").string();
        ASSERT_NE(mkdtemp(Folder.data()), nullptr);
        Place = {Folder + "/golden", Folder + "/failures", false};
        Root = Folder;
        for (int i = 0; i < 3 * 5 * 4; i++) {
            Picture.Rgb.push_back(static_cast<UINT8>(4 * i));
        }
    }
    void TearDown() override { std::filesystem::remove_all(Root); }

    void Keep() {
        SGoldenPlace Renewal = Place;
        Renewal.Renew = true;
        ASSERT_TRUE(MatchesGolden(Picture, "Picture", 0.0, Renewal));
    }
    bool Stored(const char* Suffix) const {
        return std::filesystem::exists(Place.Failures + "/Picture-" + Suffix + ".png");
    }

    SPicture Picture{5, 4, {}};
    SGoldenPlace Place;
    std::string Root;
};

TEST_F(GoldenPictureTest, AKeptPictureComesBackUpright) {
    Keep();
    const SPicture Back = ReadPng(Place.Goldens + "/Picture.png");
    EXPECT_EQ(Back.Width, 5);
    EXPECT_EQ(Back.Height, 4);
    EXPECT_EQ(Back.Rgb, Picture.Rgb);
    EXPECT_TRUE(MatchesGolden(Picture, "Picture", 0.0, Place));
    EXPECT_FALSE(std::filesystem::exists(Place.Failures));
}

TEST_F(GoldenPictureTest, TheMeanDifferenceIsTheGate) {
    Keep();
    // One channel of the 60 is 30 off: half a step in the mean.
    Picture.Rgb[7] = static_cast<UINT8>(Picture.Rgb[7] + 30);
    EXPECT_TRUE(MatchesGolden(Picture, "Picture", 0.51, Place));
    EXPECT_FALSE(MatchesGolden(Picture, "Picture", 0.49, Place));
}

TEST_F(GoldenPictureTest, AFailureStoresAllThreePictures) {
    Keep();
    const std::vector<UINT8> Expected = Picture.Rgb;
    Picture.Rgb[7] = static_cast<UINT8>(Picture.Rgb[7] + 30);
    EXPECT_FALSE(MatchesGolden(Picture, "Picture", 0.0, Place));
    EXPECT_EQ(ReadPng(Place.Failures + "/Picture-actual.png").Rgb, Picture.Rgb);
    EXPECT_EQ(ReadPng(Place.Failures + "/Picture-expected.png").Rgb, Expected);
    const std::vector<UINT8> Difference = ReadPng(Place.Failures + "/Picture-difference.png").Rgb;
    EXPECT_EQ(Difference.at(6), 0);
    EXPECT_EQ(Difference.at(7), 120);
}

TEST_F(GoldenPictureTest, AMissingGoldenFailsAndStoresTheActualPicture) {
    EXPECT_FALSE(MatchesGolden(Picture, "Picture", 255.0, Place));
    EXPECT_TRUE(Stored("actual"));
    EXPECT_FALSE(std::filesystem::exists(Place.Goldens));
}

TEST_F(GoldenPictureTest, AnotherSizeFailsWhateverTheLimit) {
    Keep();
    std::swap(Picture.Width, Picture.Height);
    EXPECT_FALSE(MatchesGolden(Picture, "Picture", 255.0, Place));
    EXPECT_TRUE(Stored("actual"));
    EXPECT_TRUE(Stored("expected"));
}

} // namespace
