// A level's text read and written in memory, for tests.
#pragma once

#include "world/LevelFile.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

struct SLevelText {
    ELevelText Result = ELevelText::Good;
    SLevelParams Params;
    GArray<SEntityDef> Defs;
    GString BadWord;
    std::string Log; // what the reading printed
};

inline SLevelText ReadLevel(const std::string& Text) {
    SLevelText Level;
    testing::internal::CaptureStdout();
    Level.Result = ReadLevelText(GString(Text.c_str()), Level.Params, Level.Defs, Level.BadWord);
    Level.Log = testing::internal::GetCapturedStdout();
    return Level;
}

inline std::string WrittenLevel(const SLevelParams& Params, const GArray<SEntityDef>& Defs = {}) {
    GString Out;
    WriteLevelText(Out, Params, Defs);
    return Out.CStr();
}
