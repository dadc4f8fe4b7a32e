#include "Pace.h"

#include <algorithm>
#include <cstdio>

void CPace::Add(float GameTime, double Milliseconds) {
    const auto Second = static_cast<std::size_t>(GameTime);
    if (Seconds.size() <= Second) {
        Seconds.resize(Second + 1);
    }
    Seconds[Second].Milliseconds += Milliseconds;
}

void CPace::Print() const {
    if (Seconds.size() < 2) {
        std::printf("the ride was too short to measure\n");
        return;
    }
    const auto End = Seconds.end() - 1;
    SSecond All;
    for (auto Second = Seconds.begin(); Second != End; ++Second) {
        All.Milliseconds += Second->Milliseconds;
        All.Pictures += Second->Pictures;
    }
    const auto Slowest = std::min_element(Seconds.begin(), End, [](auto& A, auto& B) { return A.Rate() < B.Rate(); });
    std::printf("%.1f pictures a second over %d seconds of game time, %.1f in the slowest, the %dth\n", All.Rate(),
                static_cast<int>(End - Seconds.begin()), Slowest->Rate(), static_cast<int>(Slowest - Seconds.begin()));
}
