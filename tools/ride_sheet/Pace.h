// How fast the game draws a ride, by seconds of game time: what the steps and the pictures of each took by the clock.
#pragma once

#include <vector>

class CPace {
public:
    // Milliseconds that went by at this game time, in seconds; times come in rising order.
    void Add(float GameTime, double Milliseconds);
    void CountPicture() { ++Seconds.back().Pictures; }

    // One line: pictures a second over the whole and in the slowest second. The last, unfinished one is left out.
    void Print() const;

private:
    struct SSecond {
        double Milliseconds = 0;
        int Pictures = 0;
        double Rate() const { return Pictures * 1000 / Milliseconds; }
    };
    std::vector<SSecond> Seconds;
};
