#include "support/GoldenPicture.h"

namespace {

using GoldenPictureTest = GlFixture;

TEST_F(GoldenPictureTest, TheMeanDifferenceIsTheGateAndWhatFailsIsStored) {
    const SGoldenPlace Place = {"golden", "failures"};
    SPicture Picture{5, 4, {}};
    for (int i = 0; i < 60; i++) {
        Picture.Rgb.push_back(static_cast<UINT8>(4 * i));
    }
    ASSERT_TRUE(MatchesGolden(Picture, "Kept", 0.0, {"golden", "failures", true}));
    EXPECT_TRUE(MatchesGolden(Picture, "Kept", 0.0, Place));
    EXPECT_FALSE(MatchesGolden(Picture, "Missing", 255.0, Place));
    // One channel of the 60 is 30 off: half a step in the mean.
    Picture.Rgb[7] = static_cast<UINT8>(Picture.Rgb[7] + 30);
    EXPECT_TRUE(MatchesGolden(Picture, "Kept", 0.51, Place));
    EXPECT_FALSE(fs::exists("failures/Kept-actual.png"));
    EXPECT_FALSE(MatchesGolden(Picture, "Kept", 0.49, Place));
    EXPECT_EQ(ReadPng("failures/Kept-actual.png").Rgb, Picture.Rgb);
    EXPECT_EQ(ReadPng("failures/Kept-expected.png").Rgb[7], 28);
    EXPECT_EQ(ReadPng("failures/Kept-difference.png").Rgb[7], 4 * 30);
    std::swap(Picture.Width, Picture.Height);
    EXPECT_FALSE(MatchesGolden(Picture, "Kept", 255.0, Place)) << "another size";
}

} // namespace
