#include "FoundationFixture.h"

#include "foundation/Scan.h"

using FileRead = TempDirTest;

TEST_F(FileRead, GivesEveryByteAsItIs) {
    std::string Bytes;
    for (int Size : {0, 100000}) {
        while (static_cast<int>(Bytes.size()) < Size) {
            Bytes += static_cast<char>(Bytes.size() * 7);
        }
        WriteFile("file.bin", Bytes);
        GArray<UINT8> Read;
        Read.Resize(5);
        EXPECT_EQ(F_ReadFile("file.bin", Read), 1);
        EXPECT_EQ(std::string(Read.begin(), Read.end()), Bytes);
    }
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

// A line end is moved over every place around the sizes that a buffer may have.
TEST_F(FileRead, TextLosesCarriageReturnsInFrontOfLineFeedsOnlyWhereverAReadEnds) {
    std::filesystem::create_directory("folder");
    for (const int Size : {3, 2048, 4096, 16384, 32768}) {
        for (int Shift = -3; Shift <= 3; ++Shift) {
            const std::string Front(static_cast<size_t>(Size + Shift), 'x');
            for (const auto& [Bytes, Expected] : {std::pair<std::string, std::string>{"\r\ny\rz\n\r\n", "\ny\rz\n\n"},
                                                  {"\r", "\r"},
                                                  {"a\r\r\nb", "a\r\nb"},
                                                  {{"\0\0\r\n\0", 5}, {"\0\0\n\0", 4}}}) {
                WriteFile("folder/file.txt", Front + Bytes);
                GString Text = "what was there before";
                EXPECT_NE(F_ReadTextFile("folder\\file.txt", Text), 0);
                ASSERT_EQ(std::string(Text.CStr(), Text.Length()), Front + Expected) << Size << ' ' << Shift;
            }
        }
    }
}
