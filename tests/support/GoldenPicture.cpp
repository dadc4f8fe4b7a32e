#include "support/GoldenPicture.h"

#include <IL/il.h>
#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace {

// Makes small differences visible in the stored picture.
constexpr int DIFFERENCE_GAIN = 4;

struct SImage {
    SImage() {
        ilGenImages(1, &Id);
        ilBindImage(Id);
    }
    ~SImage() { ilDeleteImages(1, &Id); }
    SImage(const SImage&) = delete;
    SImage& operator=(const SImage&) = delete;

    ILuint Id = 0;
};

std::string PngPath(const std::string& Folder, const std::string& Name) {
    return (std::filesystem::path(Folder) / (Name + ".png")).string();
}

double MeanDifference(const SPicture& A, const SPicture& B) {
    double Sum = 0.0;
    for (std::size_t i = 0; i < A.Rgb.size(); i++) {
        Sum += std::abs(A.Rgb[i] - B.Rgb[i]);
    }
    return Sum / static_cast<double>(A.Rgb.size());
}

SPicture Difference(const SPicture& A, const SPicture& B) {
    SPicture Out{A.Width, A.Height, A.Rgb};
    for (std::size_t i = 0; i < A.Rgb.size(); i++) {
        Out.Rgb[i] = static_cast<UINT8>(std::min(255, DIFFERENCE_GAIN * std::abs(A.Rgb[i] - B.Rgb[i])));
    }
    return Out;
}

::testing::AssertionResult Fail(const SPicture& Actual, const SPicture& Expected, const std::string& Name,
                                const std::string& Folder) {
    std::filesystem::create_directories(Folder);
    WritePng(PngPath(Folder, Name + "-actual"), Actual);
    if (Expected.Width) {
        WritePng(PngPath(Folder, Name + "-expected"), Expected);
    }
    if (Expected.Rgb.size() == Actual.Rgb.size()) {
        WritePng(PngPath(Folder, Name + "-difference"), Difference(Actual, Expected));
    }
    return ::testing::AssertionFailure() << "picture \"" << Name << "\" (see " << Folder << "): ";
}

} // namespace

SGoldenPlace DefaultGoldenPlace() {
    const char* Renew = std::getenv("SLOPERUSH_RENEW_GOLDEN");
    return {SLOPERUSH_GOLDEN_DIR, SLOPERUSH_GOLDEN_FAILURES_DIR, Renew && std::string(Renew) == "1"};
}

bool WritePng(const std::string& Path, const SPicture& Picture) {
    const SImage Image;
    ilTexImage(Picture.Width, Picture.Height, 1, 3, IL_RGB, IL_UNSIGNED_BYTE, const_cast<UINT8*>(Picture.Rgb.data()));
    ilRegisterOrigin(IL_ORIGIN_UPPER_LEFT);
    std::filesystem::remove(Path);
    return ilSave(IL_PNG, Path.c_str());
}

SPicture ReadPng(const std::string& Path) {
    const SImage Image;
    if (!ilLoad(IL_PNG, Path.c_str())) {
        return {};
    }
    SPicture Picture{ilGetInteger(IL_IMAGE_WIDTH), ilGetInteger(IL_IMAGE_HEIGHT), {}};
    Picture.Rgb.resize(std::size_t{3} * Picture.Width * Picture.Height);
    ilCopyPixels(0, 0, 0, Picture.Width, Picture.Height, 1, IL_RGB, IL_UNSIGNED_BYTE, Picture.Rgb.data());
    return Picture;
}

::testing::AssertionResult MatchesGolden(const SPicture& Actual, const std::string& Name, double MaxMeanDifference,
                                         const SGoldenPlace& Place) {
    const std::string Path = PngPath(Place.Goldens, Name);
    if (Place.Renew) {
        std::filesystem::create_directories(Place.Goldens);
        return WritePng(Path, Actual) ? ::testing::AssertionSuccess()
                                      : ::testing::AssertionFailure() << "could not write " << Path;
    }
    const SPicture Expected = ReadPng(Path);
    if (!Expected.Width) {
        return Fail(Actual, Expected, Name, Place.Failures) << "no golden " << Path;
    }
    if (Expected.Width != Actual.Width || Expected.Height != Actual.Height) {
        return Fail(Actual, Expected, Name, Place.Failures) << Actual.Width << " by " << Actual.Height << " instead of "
                                                            << Expected.Width << " by " << Expected.Height;
    }
    const double Mean = MeanDifference(Actual, Expected);
    if (Mean > MaxMeanDifference) {
        return Fail(Actual, Expected, Name, Place.Failures)
               << "mean difference " << Mean << ", at most " << MaxMeanDifference << " is allowed";
    }
    return ::testing::AssertionSuccess();
}
