#include "FoundationFixture.h"

#include "foundation/Scan.h"

namespace {

class FileRead : public TempDirTest {
protected:
    // The text that F_ReadTextFile makes of a file with these bytes.
    static std::string TextOf(const std::string& Bytes) {
        WriteFile("file.txt", Bytes);
        GString Text = "what was there before";
        EXPECT_NE(F_ReadTextFile("file.txt", Text), 0);
        return {Text.CStr(), Text.Length()};
    }
};

} // namespace

TEST_F(FileRead, GivesEveryByteAsItIs) {
    std::string Bytes;
    for (int i = 0; i < 100000; ++i) {
        Bytes += static_cast<char>(i * 7 % 256);
    }
    WriteFile("file.bin", Bytes);
    GArray<UINT8> Read;
    Read.Resize(5);
    EXPECT_EQ(F_ReadFile("file.bin", Read), 1);
    EXPECT_EQ(std::string(Read.begin(), Read.end()), Bytes);
}

TEST_F(FileRead, EmptyFilesAreReadAsEmpty) {
    WriteFile("empty", "");
    GArray<UINT8> Bytes;
    Bytes.Resize(3);
    EXPECT_EQ(F_ReadFile("empty", Bytes), 1);
    EXPECT_EQ(Bytes.Size(), 0u);
    EXPECT_EQ(TextOf(""), "");
}

TEST_F(FileRead, MissingFilesAndFoldersGiveZero) {
    std::filesystem::create_directory("folder");
    for (const char* Name : {"missing", "folder"}) {
        GArray<UINT8> Bytes;
        GString Text = "old";
        EXPECT_EQ(F_ReadFile(Name, Bytes), 0) << Name;
        EXPECT_EQ(F_ReadTextFile(Name, Text), 0) << Name;
        EXPECT_EQ(Text.Length(), 0u) << Name;
    }
}

TEST_F(FileRead, BackslashesLeadIntoFoldersToo) {
    std::filesystem::create_directory("folder");
    WriteFile("folder/a.txt", "inside");
    GString Text;
    EXPECT_NE(F_ReadTextFile("folder\\a.txt", Text), 0);
    EXPECT_TRUE(Text == "inside");
}

TEST_F(FileRead, TextLosesCarriageReturnsInFrontOfLineFeedsOnly) {
    EXPECT_EQ(TextOf("one\r\ntwo\n\r\n\r\nthree"), "one\ntwo\n\n\nthree");
    EXPECT_EQ(TextOf("a\rb\r\r\nc\r"), "a\rb\r\nc\r");
}

TEST_F(FileRead, TextKeepsZerosAndLongLines) {
    const std::string Long(5000, 'x');
    EXPECT_EQ(TextOf(Long + "\n" + Long), Long + "\n" + Long);
    const std::string Zeros("a\0b\0\0\nc\0", 8);
    EXPECT_EQ(TextOf(Zeros), Zeros);
}

TEST_F(FileRead, TextIsTheSameWhereverAReadEnds) {
    // A line end is moved over every place around the sizes that a buffer may have.
    for (const int Size : {2047, 2048, 4096, 16384, 32768}) {
        for (int Shift = -3; Shift <= 3; ++Shift) {
            const std::string Front(Size + Shift, 'x');
            ASSERT_EQ(TextOf(Front + "\r\ny\rz"), Front + "\ny\rz") << Size << ' ' << Shift;
            ASSERT_EQ(TextOf(Front + "\r"), Front + "\r") << Size << ' ' << Shift;
        }
    }
}
