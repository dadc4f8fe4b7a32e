// The shipped levels: they load in silence, whole rides, faster than real time and without a picture, can be won and
// repeat themselves, a rider without a plan comes to no harm, and a moment of a ride is kept as a picture.
#include "bots/Ride.h"
#include "bots/Wander.h"
#include "game/GameFixture.h"
#include "terrain/Terrain.h"

namespace {

class Rides : public GameFixture {};

TEST_F(Rides, ShippedLevelsLoadAndRunInSilence) {
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

TEST_F(Rides, AnExpertWinsEveryLevelAndWhoNeverSteersSeldomTheLast) {
    for (UINT32 Level = 0; Level < LEVEL_COUNT; ++Level) {
        const SRide Ride = RideLevel(Level, 1, Skills[EXPERT]);
        EXPECT_TRUE(Ride.Won) << Level + 1 << ": " << Ride.Time << " s, " << Ride.Trees << " trees, ends at y "
                              << Ride.End.y;
    }
    EXPECT_FALSE(RideLevel(LEVEL_COUNT - 1, 2, Skills[BEGINNER]).Won);
}

TEST_F(Rides, SameSeedAndKeysGiveTheSameRide) {
    const SRide First = RideLevel(0, 5, Skills[AVERAGE]);
    const SRide Second = RideLevel(0, 5, Skills[AVERAGE]);
    EXPECT_EQ(First.Time, Second.Time);
    EXPECT_EQ(First.Trees, Second.Trees);
    EXPECT_EQ(First.End, Second.End);
}

TEST_F(Rides, WithoutAPlanOneStaysOnTheSlopeAndIsNotHeld) {
    for (UINT32 Level = 0; Level < LEVEL_COUNT; ++Level) {
        SWander Result;
        EXPECT_EQ(PrintedBy([&] { Result = Wander(Level, 60, EStart::OnTheWay); }), "");
        EXPECT_NEAR(Result.Time, 60, 0.1);
        for (const SFault& Fault : Result.Faults) {
            ADD_FAILURE() << "level " << Level + 1 << ", run " << Fault.Seed << ": " << Fault.What << " at "
                          << Fault.Place.x << ' ' << Fault.Place.y << ' ' << Fault.Place.z;
        }
    }
}

// The rider among its pines, in the middle of a stroke over a turn.
TEST_F(Rides, AStrokeInTheWoodLooksAsItWasKept) {
    StartRide(0, 1);
    for (int i = 0; i < 90; ++i) {
        StepLevel(SBotKeys{.Left = i > 66, .Push = true, .Cut = i > 80});
    }
    const Vec3 Place = TheRider().Client.Pos;
    LookFrom(Place + Vec3{6, 16, 16}, Place + Vec3{0, 0, 7});
    EXPECT_TRUE(MatchesGolden(Drawn(), "wood", 1.0));
}

} // namespace
