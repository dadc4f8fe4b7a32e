// What the tests of this folder share: a working directory of the test's own, what a piece of code prints, random
// values, and death by fatal error.
#pragma once

#include "foundation/Diagnostics.h"
#include "foundation/Maths.h"
#include "platform/Platform.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>

// What a call prints on standard output.
template <class TCall>
std::string PrintedBy(TCall Call) {
    testing::internal::CaptureStdout();
    Call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// Every case starts in an empty directory, which goes when the case is over.
class TempDirTest : public testing::Test {
protected:
    TempDirTest() : Before(std::filesystem::current_path()) {
        std::string Pattern = (std::filesystem::temp_directory_path() / "foundation-XXXXXX").string();
        Dir = mkdtemp(Pattern.data());
        std::filesystem::current_path(Dir);
    }
    ~TempDirTest() override {
        std::filesystem::current_path(Before);
        std::filesystem::remove_all(Dir);
    }

    static void WriteFile(const std::string& Name, const std::string& Bytes) {
        std::ofstream(Name, std::ios::binary) << Bytes;
    }
    static std::string ReadBack(const std::string& Name) {
        std::ifstream File(Name, std::ios::binary);
        return {std::istreambuf_iterator<char>(File), {}};
    }

private:
    std::filesystem::path Before;
    std::filesystem::path Dir;
};

// The same row of values in every run.
class CRandom {
public:
    float Between(float Low, float High) { return std::uniform_real_distribution<float>(Low, High)(Engine); }
    int Whole(int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(Engine); }
    Vec3 Point(float Reach) { return {Between(-Reach, Reach), Between(-Reach, Reach), Between(-Reach, Reach)}; }
    Vec3 Unit() {
        const Vec3 v = Point(1);
        return M_Dot(v, v) > 1 || M_Dot(v, v) < 0.01f ? Unit() : M_Normalized(v);
    }
    Quat Rotation() {
        Quat q = {Between(-1, 1), Between(-1, 1), Between(-1, 1), Between(0.1f, 1)};
        M_QuatNormalize(q);
        return q;
    }

private:
    std::mt19937 Engine{20031};
};

inline void ExpectNear(const Vec3& Actual, const Vec3& Expected, float Tolerance) {
    EXPECT_NEAR(Actual.x, Expected.x, Tolerance);
    EXPECT_NEAR(Actual.y, Expected.y, Tolerance);
    EXPECT_NEAR(Actual.z, Expected.z, Tolerance);
}
