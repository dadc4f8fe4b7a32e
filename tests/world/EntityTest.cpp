// Entities without a level: the class registry, where a position comes from, and how one is saved.
#include "foundation/Scan.h"
#include "support/Common.h"
#include "world/Probe.h"

#include <memory>

namespace {

TEntityRegistration<CProbe> ProbeRegistration("Probe");

struct CUnnamed : CProbe {
    using CProbe::CProbe;
};
TEntityRegistration<CUnnamed> LongNameRegistration("NameThatIsLongerThanTheRecordHasRoomFor");

std::unique_ptr<CEntity> Made(std::initializer_list<std::pair<const char*, const char*>> Pairs) {
    GProperties Props;
    for (const auto& [Key, Value] : Pairs) {
        Props.Insert(Key, Value);
    }
    return std::unique_ptr<CEntity>(CreateEntity("Probe", Props));
}

TEST(EntityRegistry, HasEachClassOnceUnderItsExactName) {
    std::multiset<std::string> Names;
    for (const SEntityClass* Record = GEntityClasses; Record; Record = Record->Next) {
        Names.insert(Record->Name);
    }
    EXPECT_EQ(Names.size(), GEntityClassCount);
    for (const char* Name : {"Probe", "FPSCamera", "NameThatIsLongerThanTheRecordHa"}) {
        EXPECT_EQ(Names.count(Name), 1u) << Name;
    }
    for (const char* Name : {"probe", "Prob", "Probe ", "Probes", ""}) {
        EXPECT_EQ(CreateEntity(Name, {}), nullptr) << Name;
    }
    EXPECT_STREQ(Made({})->Class->Name, "Probe");
}

TEST(Entity, PositionComesFromTheVectorElseTheCoordinatesElseIsZero) {
    EXPECT_EQ(Made({{"_POS", "1.5;-2;3"}, {"x", "7"}, {"z", "9"}})->Position, Vec3({1.5f, -2, 3}));
    EXPECT_EQ(Made({{"x", "7"}, {"y", "-8.25"}, {"z", "9"}})->Position, Vec3({7, -8.25f, 9}));
    EXPECT_EQ(Made({{"y", "4"}, {"Position", "1;2;3"}, {"_pos", "1;2;3"}})->Position, Vec3({0, 4, 0}));
    std::unique_ptr<CEntity> Odd;
    EXPECT_NE(PrintedBy([&] { Odd = Made({{"_POS", "1;oak;3"}}); }), "");
    EXPECT_EQ(Odd->Position, Vec3({1, F_BAD_FLOAT, F_BAD_FLOAT}));
}

TEST(Entity, SavesCoordinatesWithSixDecimalsAndAtMost32Characters) {
    const std::unique_ptr<CEntity> Entity = Made({});
    Entity->Position = {0.5f, -1e20f, F_BAD_FLOAT};
    GProperties Props;
    Entity->SaveProperties(Props);
    EXPECT_STREQ(Props["x"].CStr(), "0.500000");
    EXPECT_STREQ(Props["y"].CStr(), "-100000002004087734272.000000");
    EXPECT_STREQ(Props["z"].CStr(), "34028234663852885981170418348451");
}

} // namespace
