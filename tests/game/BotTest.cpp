// The shipped levels: they load in silence, and whole rides, faster than real time and without a picture, can be won
// and repeat themselves.
#include "game/Bot.h"
#include "game/GameFixture.h"
#include "platform/Platform.h"
#include "terrain/Terrain.h"

#include <vector>

namespace {

struct SRide {
    float Time = 0; // seconds to the end of the slope
    UINT32 Trees = 0;
    bool Finished = false;
    Vec3 End;
};

class Ride : public GameFixture {
protected:
    // Rides until the end of the slope or of the time.
    static SRide Go(UINT32 Index, UINT32 Seed) {
        const SLevelRecord& Record = GLevels[Index];
        ReleaseKeys();
        GTreesCut = 0;
        LoadLevel(Record.File);
        SowTrees(Record.Trees, Seed);
        CBot Bot;
        SRide Result;
        while (!Result.Finished && Result.Time < Record.TimeLimit) {
            const UINT32 Wanted = Record.Quota + 2 > GTreesCut ? Record.Quota + 2 - GTreesCut : 0;
            Press(Bot.Think(Wanted));
            Result.Time += STEP;
            Result.End = Bot.Rider().Client.Pos;
            Result.Finished = Result.End.y < -0.8f * GLevel->Params.SizeY;
        }
        Result.Trees = GTreesCut;
        return Result;
    }

    static void Press(const SBotKeys& Keys) {
        const std::pair<bool, UINT32> All[] = {{Keys.Left, SDLK_LEFT},
                                               {Keys.Right, SDLK_RIGHT},
                                               {Keys.Push, SDLK_UP},
                                               {Keys.Brake, SDLK_DOWN},
                                               {Keys.Cut, SDLK_SPACE}};
        StepWith([&](UINT32 Key) {
            return std::any_of(std::begin(All), std::end(All), [&](auto& p) { return p.second == Key && p.first; });
        });
    }
};

TEST_F(Ride, ShippedLevelsLoadAndRunInSilence) {
    for (const auto& Entry : fs::directory_iterator("Data/Levels")) {
        SCOPED_TRACE(Entry.path());
        EXPECT_EQ(PrintedBy([&] {
                      LoadLevel(Entry.path().string()).Update(STEP);
                      GLevel->Render(1.0f);
                  }),
                  "");
        EXPECT_TRUE(GLevel->Terrain->Body && GLevel->Sky.Texture);
        EXPECT_EQ(GLevel->Entities.count, GLevel->EntityDefs.count);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

TEST_F(Ride, TheBotWinsEveryLevel) {
    for (UINT32 Level = 0; Level < LEVEL_COUNT; ++Level) {
        const SRide Result = Go(Level, 1);
        std::printf("level %u: %.1f s, %u trees, ends at %.0f %.0f %.0f\n", Level + 1, Result.Time, Result.Trees,
                    Result.End.x, Result.End.y, Result.End.z);
        EXPECT_TRUE(Result.Finished) << Level + 1;
        EXPECT_GE(Result.Trees, GLevels[Level].Quota) << Level + 1;
    }
}

TEST_F(Ride, SameSeedAndKeysGiveTheSameRide) {
    const SRide First = Go(0, 5);
    const SRide Second = Go(0, 5);
    EXPECT_EQ(First.Time, Second.Time);
    EXPECT_EQ(First.Trees, Second.Trees);
    EXPECT_EQ(First.End, Second.End);
}

} // namespace
