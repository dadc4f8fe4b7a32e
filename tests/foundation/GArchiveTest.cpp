#include "foundation/GArchive.h"
#include "support/Common.h"

namespace {

// The smallest writer: takes bytes into a vector.
class FTestWriter : public FArchive {
public:
    FTestWriter() { m_bIsWriter = 1; }
    void Serialize(void* Data, UINT32 Size) override {
        const UINT8* From = static_cast<UINT8*>(Data);
        Written.insert(Written.end(), From, From + Size);
    }
    FBytes Written;
};

class GArchiveTest : public testing::Test {
protected:
    void Fill(const FBytes& Values) {
        Bytes.Resize(static_cast<UINT32>(Values.size()));
        std::copy(Values.begin(), Values.end(), Bytes.begin());
    }
    GArray<UINT8> Bytes;
    FByteReader Reader{Bytes};
    FTestWriter Writer;
};

TEST_F(GArchiveTest, TheMostSignificantByteComesFirst) {
    const FBytes Values = {0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF, 0xFF, 0xFE, 0x3F, 0xC0, 0, 0};
    Fill(Values);
    UINT32 Unsigned = 0;
    INT32 Signed = 0;
    float Real = 0;
    Reader << Unsigned << Signed << Real;
    EXPECT_TRUE(Unsigned == 0x12345678 && Signed == -2 && Real == 1.5f && Reader.AtEnd());
    Writer << Unsigned << Signed << Real;
    EXPECT_EQ(Writer.Written, Values);
    EXPECT_TRUE(Writer.Tell() == -1 && Writer.Size() == -1 && Writer.AtEnd());
}

TEST_F(GArchiveTest, ShortReadGivesWhatIsThere) {
    Fill({1, 2, 3, 4});
    Reader.Seek(1); // does nothing
    EXPECT_FALSE(Reader.AtEnd());
    FBytes Read(6, 9);
    for (int Round = 0; Round < 3; ++Round) {
        Reader.Serialize(Read.data(), 6); // then at the end, then beyond it
        EXPECT_EQ(Read, (FBytes{1, 2, 3, 4, 9, 9}));
        EXPECT_EQ(Reader.Tell(), 4);
        EXPECT_TRUE(Round == 2 || Reader.AtEnd());
        Bytes.Resize(Round == 0 ? 4 : 2);
    }
}

TEST_F(GArchiveTest, CopiesAWholeArchiveOrNothingOfAnEmptyOneAndChecksDirections) {
    FArchive& Base = Writer;
    for (const FBytes& Values : {FBytes{5, 6, 7}, FBytes{}}) {
        Fill(Values);
        Reader.Position = 0;
        Writer.Written.clear();
        Base << static_cast<FArchive&>(Reader);
        EXPECT_EQ(Writer.Written, Values);
        GArray<UINT8> Taken;
        Taken.Resize(2);
        FByteReader Again(Bytes), Other(Taken);
        Other << Again;
        EXPECT_EQ(FBytes(Taken.begin(), Taken.end()), Values);
    }
    EXPECT_DEATH(Base << Base, "Assertion failed: src.m_bIsReader && m_bIsWriter");
    EXPECT_DEATH(Reader << Base, "Assertion failed: src.m_bIsReader, ");
}

} // namespace
