#include "support/GoldenPicture.h"

#include <IL/il.h>
#include <IL/ilu.h>
#include <numeric>

namespace {

// Makes small differences visible in the stored picture.
constexpr int DIFFERENCE_GAIN = 4;

// Empty if the pictures differ in size.
SPicture Difference(const SPicture& A, const SPicture& B, int Gain) {
    SPicture Out = A.Width == B.Width && A.Height == B.Height ? A : SPicture();
    for (std::size_t i = 0; i < Out.Rgb.size(); i++) {
        Out.Rgb[i] = static_cast<UINT8>(std::min(255, Gain * std::abs(A.Rgb[i] - B.Rgb[i])));
    }
    return Out;
}

} // namespace

double MeanDifference(const SPicture& A, const SPicture& B) {
    const FBytes Apart = Difference(A, B, 1).Rgb;
    return Apart.empty() ? 256 : std::accumulate(Apart.begin(), Apart.end(), 0.0) / static_cast<double>(Apart.size());
}

SGoldenPlace DefaultGoldenPlace() {
    const char* Renew = std::getenv("SLOPERUSH_RENEW_GOLDEN");
    return {SLOPERUSH_GOLDEN_DIR, SLOPERUSH_GOLDEN_FAILURES_DIR, Renew && std::string(Renew) == "1"};
}

SPicture Shrunk(const SPicture& Big) {
    constexpr int FACTOR = 4;
    SPicture Small{Big.Width / FACTOR, Big.Height / FACTOR, {}};
    for (int i = 0; i < Small.Width * Small.Height * 3; ++i) {
        const int X = i / 3 % Small.Width * FACTOR;
        const int Y = i / 3 / Small.Width * FACTOR;
        int Sum = 0;
        for (int k = 0; k < FACTOR * FACTOR; ++k) {
            Sum += Big.Rgb[((Y + k / FACTOR) * Big.Width + X + k % FACTOR) * 3 + i % 3];
        }
        Small.Rgb.push_back(static_cast<UINT8>(Sum / (FACTOR * FACTOR)));
    }
    return Small;
}

bool WritePng(const std::string& Path, const SPicture& Picture) {
    fs::create_directories(fs::path(Path).parent_path());
    fs::remove(Path);
    ilBindImage(0);
    UINT8* Pixels = const_cast<UINT8*>(Picture.Rgb.data());
    return Pixels && ilTexImage(Picture.Width, Picture.Height, 1, 3, IL_RGB, IL_UNSIGNED_BYTE, Pixels) &&
           ilSave(IL_PNG, Path.c_str());
}

SPicture ReadPng(const std::string& Path) {
    ilBindImage(0);
    if (!ilLoad(IL_PNG, Path.c_str()) || !iluFlipImage()) {
        return {};
    }
    SPicture Picture{ilGetInteger(IL_IMAGE_WIDTH), ilGetInteger(IL_IMAGE_HEIGHT), {}};
    Picture.Rgb.resize(std::size_t{3} * Picture.Width * Picture.Height);
    ilCopyPixels(0, 0, 0, Picture.Width, Picture.Height, 1, IL_RGB, IL_UNSIGNED_BYTE, Picture.Rgb.data());
    return Picture;
}

::testing::AssertionResult MatchesGolden(const SPicture& Actual, const std::string& Name, double MaxMeanDifference,
                                         const SGoldenPlace& Place) {
    const std::string Golden = Place.Goldens + "/" + Name + ".png";
    if (Place.Renew) {
        return ::testing::AssertionResult(WritePng(Golden, Actual)) << Golden;
    }
    const SPicture Expected = ReadPng(Golden);
    const double Mean = MeanDifference(Actual, Expected);
    if (Mean <= MaxMeanDifference) {
        return ::testing::AssertionSuccess();
    }
    const std::string Stored = Place.Failures + "/" + Name;
    WritePng(Stored + "-actual.png", Actual);
    WritePng(Stored + "-expected.png", Expected);
    WritePng(Stored + "-difference.png", Difference(Actual, Expected, DIFFERENCE_GAIN));
    return ::testing::AssertionFailure() << "mean difference " << Mean << " from " << Golden << " (" << Expected.Width
                                         << " by " << Expected.Height << "); see " << Stored << "-actual.png";
}
