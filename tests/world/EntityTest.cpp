// Entities without a level: the class registry, where a position comes from, and the ways to save one.
#include "foundation/GArchive.h"
#include "foundation/Scan.h"
#include "world/LevelText.h"
#include "world/Probe.h"

#include <memory>

namespace {

TEntityRegistration<CProbe> ProbeRegistration("Probe");

class CUnnamed : public CProbe {
public:
    using CProbe::CProbe;
};
TEntityRegistration<CUnnamed> LongNameRegistration("NameThatIsLongerThanTheRecordHasRoomFor");

GProperties Properties(std::initializer_list<std::pair<const char*, const char*>> Pairs) {
    GProperties Props;
    for (const auto& [Key, Value] : Pairs) {
        Props.Insert(Key, Value);
    }
    return Props;
}

Vec3 PositionOf(std::initializer_list<std::pair<const char*, const char*>> Pairs) {
    return std::unique_ptr<CEntity>(CreateEntity("Probe", Properties(Pairs)))->Position;
}

UINT32 RecordsNamed(const char* Name) {
    UINT32 Count = 0;
    for (const SEntityClass* Record = GEntityClasses; Record; Record = Record->Next) {
        Count += GString(Record->Name) == Name;
    }
    return Count;
}

TEST(EntityRegistry, EveryRecordIsCountedAndNamed) {
    UINT32 Count = 0;
    for (const SEntityClass* Record = GEntityClasses; Record; Record = Record->Next) {
        ++Count;
    }
    EXPECT_EQ(Count, GEntityClassCount);
    EXPECT_EQ(RecordsNamed("Probe"), 1u);
    EXPECT_EQ(RecordsNamed("FPSCamera"), 1u);
    EXPECT_EQ(RecordsNamed("NameThatIsLongerThanTheRecordHa"), 1u) << "cut at 31 characters";
}

TEST(EntityRegistry, NamesCompareExactly) {
    testing::internal::CaptureStdout();
    for (const char* Name : {"probe", "Prob", "Probe ", "Probes", ""}) {
        EXPECT_EQ(CreateEntity(Name, {}), nullptr) << Name;
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(EntityRegistry, EntitiesOfAClassShareItsRecordWhichTheConstructorDoesNotSee) {
    const std::unique_ptr<CEntity> A(CreateEntity("Probe", {}));
    const std::unique_ptr<CEntity> B(CreateEntity("Probe", {}));
    ASSERT_NE(A->Class, nullptr);
    EXPECT_EQ(A->Class, B->Class);
    EXPECT_STREQ(A->Class->Name, "Probe");
    EXPECT_EQ(static_cast<CProbe&>(*A).ClassInConstructor, nullptr);
}

TEST(EntityPosition, ComesFromTheVectorElseTheCoordinatesElseIsZero) {
    EXPECT_EQ(PositionOf({{"_POS", "1.5;-2;3"}}), Vec3({1.5f, -2, 3}));
    EXPECT_EQ(PositionOf({{"_POS", "1;2;3"}, {"x", "7"}, {"z", "9"}}), Vec3({1, 2, 3}));
    EXPECT_EQ(PositionOf({{"x", "7"}, {"y", "-8.25"}, {"z", "9"}}), Vec3({7, -8.25f, 9}));
    EXPECT_EQ(PositionOf({{"y", "4"}}), Vec3({0, 4, 0}));
    EXPECT_EQ(PositionOf({{"Position", "1;2;3"}, {"_pos", "1;2;3"}}), Vec3());
}

TEST(EntityPosition, MalformedVectorKeepsWhatTheScannersGive) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(PositionOf({{"_POS", "1;oak;3"}}), Vec3({1, F_BAD_FLOAT, F_BAD_FLOAT}));
    EXPECT_EQ(PositionOf({{"_POS", ""}}), Vec3({F_BAD_FLOAT, F_BAD_FLOAT, F_BAD_FLOAT}));
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
}

TEST(EntitySaving, PropertiesComeBackThroughALevelFile) {
    SEntityDef Def;
    Def.ClassName = "Probe";
    const std::unique_ptr<CEntity> Saved(CreateEntity("Probe", Properties({{"_POS", "0.125;-3000;12345.678"}})));
    Saved->SaveProperties(Def.Properties);
    GArray<SEntityDef> Defs;
    Defs.Add(Def);
    const SLevelText Level = ReadLevel(WrittenLevel({}, Defs));
    ASSERT_EQ(Level.Defs.count, 1u);
    EXPECT_EQ(Level.Defs[0].Properties.Find("_POS"), nullptr);
    const std::unique_ptr<CEntity> Loaded(CreateEntity("Probe", Level.Defs[0].Properties));
    EXPECT_EQ(Loaded->Position, Saved->Position);
    EXPECT_EQ(Level.Defs[0].Position, Saved->Position);
}

TEST(EntitySaving, CoordinatesHaveSixDecimalsAndAtMost32Characters) {
    const std::unique_ptr<CEntity> Entity(CreateEntity("Probe", {}));
    Entity->Position = {0.5f, -1e20f, F_BAD_FLOAT};
    GProperties Props;
    Entity->SaveProperties(Props);
    EXPECT_STREQ(Props["x"].CStr(), "0.500000");
    EXPECT_STREQ(Props["y"].CStr(), "-100000002004087734272.000000");
    EXPECT_STREQ(Props["z"].CStr(), "34028234663852885981170418348451");
}

TEST(EntitySaving, SerializeReadsThreeFloatsMostSignificantByteFirst) {
    GArray<UINT8> Bytes;
    for (const UINT8 Byte : {0x3F, 0x80, 0, 0, 0xC0, 0, 0, 0, 0x40, 0x40, 0, 0, 0xFF}) {
        Bytes.Add(Byte);
    }
    FByteReader Reader(Bytes);
    const std::unique_ptr<CEntity> Entity(CreateEntity("Probe", {}));
    Entity->Serialize(Reader);
    EXPECT_EQ(Entity->Position, Vec3({1, -2, 3}));
    EXPECT_EQ(Reader.Tell(), 12);
}

} // namespace
