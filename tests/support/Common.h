// What the tests of all folders share: what a call prints, files and a directory of the case's own, random values that
// are the same in every run, and death by fatal error.
#pragma once

#include "foundation/Maths.h"
#include "platform/Platform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using FBytes = std::vector<UINT8>;

// What exit(0xBADDC0DE) comes out as.
constexpr int FATAL_EXIT_STATUS = 222;
#define EXPECT_FATAL(Statement, Text) EXPECT_EXIT(Statement, ::testing::ExitedWithCode(FATAL_EXIT_STATUS), Text)

// On standard output.
inline std::string PrintedBy(const std::function<void()>& Call) {
    testing::internal::CaptureStdout();
    Call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// Missing folders of the path are made.
inline void WriteText(const fs::path& Path, const std::string& Text) {
    fs::create_directories(fs::absolute(Path).parent_path());
    std::ofstream(Path, std::ios::binary) << Text;
}

inline std::string ReadText(const fs::path& Path) {
    std::ifstream File(Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), {}};
}

// Every case starts in an empty directory, which goes when the case is over. Messages go to standard error.
class TempDirTest : public testing::Test {
protected:
    TempDirTest() {
        fs::current_path(mkdtemp((fs::temp_directory_path() / "sloperush-XXXXXX").string().data()));
        Dir = fs::current_path();
        GPlatform.ShowError = [](const char*, const char* Text) { std::fputs(Text, stderr); };
    }
    ~TempDirTest() override {
        PlatformRestore();
        fs::current_path(Before);
        fs::remove_all(Dir);
    }

    const fs::path Before = fs::current_path();
    fs::path Dir;
};

class CRandom {
public:
    float operator()() { return Between(0, 1); }
    float Between(float Low, float High) { return std::uniform_real_distribution<float>(Low, High)(Engine); }
    int Whole(int Low, int High) { return std::uniform_int_distribution<int>(Low, High)(Engine); }
    UINT32 Below(UINT32 End) { return std::uniform_int_distribution<UINT32>(0, End - 1)(Engine); }
    Vec3 Point(float Reach) { return {Between(-Reach, Reach), Between(-Reach, Reach), Between(-Reach, Reach)}; }
    Vec3 Unit() {
        const Vec3 v = Point(1);
        return M_Dot(v, v) > 1 || M_Dot(v, v) < 0.01f ? Unit() : M_Normalized(v);
    }
    Quat Rotation() { return M_QuatNormalized({Between(-1, 1), Between(-1, 1), Between(-1, 1), Between(0.1f, 1)}); }

    std::mt19937 Engine{20031};
};

inline void ExpectNear(const Vec3& Actual, const Vec3& Expected, float Tolerance) {
    EXPECT_LE(M_Length(Actual - Expected), Tolerance) << Actual.x << ' ' << Actual.y << ' ' << Actual.z << " but not "
                                                      << Expected.x << ' ' << Expected.y << ' ' << Expected.z;
}
