#include "foundation/GArchive.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

GArray<UINT8> BytesOf(const std::vector<UINT8>& Values) {
    GArray<UINT8> Bytes;
    for (const UINT8 Value : Values) {
        Bytes.Add(Value);
    }
    return Bytes;
}

// The smallest writer: takes bytes into a vector.
class FTestWriter : public FArchive {
public:
    FTestWriter() { m_bIsWriter = 1; }
    void Serialize(void* Data, UINT32 Size) override {
        const UINT8* From = static_cast<UINT8*>(Data);
        Written.insert(Written.end(), From, From + Size);
    }
    std::vector<UINT8> Written;
};

TEST(GArchiveTest, ReadsTheMostSignificantByteFirst) {
    GArray<UINT8> Bytes = BytesOf({0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF, 0xFF, 0xFE, 0x3F, 0xC0, 0, 0});
    FByteReader Reader(Bytes);
    UINT32 Unsigned = 0;
    INT32 Signed = 0;
    float Real = 0;
    Reader << Unsigned << Signed << Real;
    EXPECT_EQ(Unsigned, 0x12345678u);
    EXPECT_EQ(Signed, -2);
    EXPECT_EQ(Real, 1.5f);
    EXPECT_TRUE(Reader.AtEnd());
}

TEST(GArchiveTest, WritesTheMostSignificantByteFirst) {
    FTestWriter Writer;
    UINT32 Unsigned = 0x01020304;
    float Real = -2.0f;
    Writer << Unsigned << Real;
    EXPECT_EQ(Writer.Written, (std::vector<UINT8>{1, 2, 3, 4, 0xC0, 0, 0, 0}));
}

TEST(GArchiveTest, ShortReadGivesWhatIsThere) {
    GArray<UINT8> Bytes = BytesOf({1, 2, 3, 4});
    FByteReader Reader(Bytes);
    UINT8 Read[10] = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
    Reader.Serialize(Read, sizeof(Read));
    EXPECT_EQ(std::vector<UINT8>(Read, Read + 10), (std::vector<UINT8>{1, 2, 3, 4, 9, 9, 9, 9, 9, 9}));
    EXPECT_EQ(Reader.Tell(), 4);
    EXPECT_TRUE(Reader.AtEnd());
}

TEST(GArchiveTest, ReadAtTheEndGivesNothing) {
    GArray<UINT8> Bytes;
    FByteReader Reader(Bytes);
    UINT32 Value = 77;
    Reader << Value;
    EXPECT_EQ(Value, 77u);
    EXPECT_EQ(Reader.Tell(), 0);
    EXPECT_TRUE(Reader.AtEnd());
}

TEST(GArchiveTest, ReadBeyondAnArrayThatShrankGivesNothing) {
    GArray<UINT8> Bytes = BytesOf({1, 2, 3, 4, 5});
    FByteReader Reader(Bytes);
    UINT32 Value = 0;
    Reader << Value;
    Bytes.Resize(2);
    UINT8 Next = 6;
    Reader.Serialize(&Next, 1);
    EXPECT_EQ(Next, 6);
    EXPECT_EQ(Reader.Tell(), 4);
}

TEST(GArchiveTest, SeekDoesNothing) {
    GArray<UINT8> Bytes = BytesOf({1, 2});
    FByteReader Reader(Bytes);
    Reader.Seek(1);
    EXPECT_EQ(Reader.Tell(), 0);
    EXPECT_EQ(Reader.Size(), 2);
    EXPECT_FALSE(Reader.AtEnd());
}

TEST(GArchiveTest, BaseClassIsAlwaysAtItsEnd) {
    FTestWriter Writer;
    EXPECT_EQ(Writer.Tell(), -1);
    EXPECT_EQ(Writer.Size(), -1);
    EXPECT_TRUE(Writer.AtEnd());
}

TEST(GArchiveTest, CopiesAWholeArchive) {
    GArray<UINT8> Bytes = BytesOf({5, 6, 7});
    FByteReader Reader(Bytes);
    FTestWriter Writer;
    static_cast<FArchive&>(Writer) << static_cast<FArchive&>(Reader);
    EXPECT_EQ(Writer.Written, (std::vector<UINT8>{5, 6, 7}));

    GArray<UINT8> Taken;
    FByteReader Other(Taken);
    FByteReader Again(Bytes);
    Other << Again;
    EXPECT_EQ(std::vector<UINT8>(Taken.begin(), Taken.end()), (std::vector<UINT8>{5, 6, 7}));
}

TEST(GArchiveTest, CopiesNothingFromAnEmptyArchive) {
    GArray<UINT8> Empty;
    FByteReader Reader(Empty);
    FTestWriter Writer;
    static_cast<FArchive&>(Writer) << static_cast<FArchive&>(Reader);
    EXPECT_TRUE(Writer.Written.empty());
    GArray<UINT8> Taken = BytesOf({1, 2});
    FByteReader Other(Taken);
    Other << Reader;
    EXPECT_EQ(Taken.Size(), 0u);
}

TEST(GArchiveDeathTest, ChecksDirections) {
    GArray<UINT8> Bytes;
    FByteReader Reader(Bytes);
    FTestWriter Writer;
    FArchive& Base = Writer;
    EXPECT_DEATH(Base << Base, "Assertion failed: src.m_bIsReader && m_bIsWriter");
    EXPECT_DEATH(Reader << Base, "Assertion failed: src.m_bIsReader, ");
}

} // namespace
