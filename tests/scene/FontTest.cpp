// Text: wrapping, alignment and quads against a plain model, what a damaged table does, and a kept picture.
#include "scene/GLFont.h"

#include <GL/glew.h>
#include <array>
#include <cmath>
#include <filesystem>
#include <numeric>
#include <random>

#include "graphics/ShaderLib.h"
#include "support/GoldenPicture.h"

namespace {

// x, y, u, v of each corner: sixty-fourths of a unit and 65536ths of the picture.
using Corners = std::vector<std::array<long, 4>>;

void AddCorner(Corners& To, float x, float y, float u, float v) {
    To.push_back({std::lround(64 * x), std::lround(64 * y), std::lround(65536 * u), std::lround(65536 * v)});
}

// Cells of 15 by 10 pixels in a picture of 256 by 512, the first with code 32: a width is as many units as its byte.
class FontTest : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        for (int Code = 0; Ready && Code < 256; Code++) {
            Table += static_cast<char>(1 + Code * 7 % 13);
        }
        if (Ready) {
            WriteText("Data/Engine/Font.dat", Table);
            WriteTga("Data/Engine/Font.tga", 1, 1, 3, {255, 255, 255});
        }
    }

    float Width(const std::string& Text) const {
        return std::accumulate(Text.begin(), Text.end(), 0.0f, [&](float Sum, char c) {
            return Sum + (c >= 0 ? static_cast<float>(Table[17 + c]) : 0);
        });
    }

    static bool Starts(const std::string& Text, std::size_t p) { return (" " + Text)[p] == ' ' && Text[p] != ' '; }

    // The width of the whole word that was the last to start in front of End.
    float WordBefore(const std::string& Text, std::size_t End) const {
        for (; End > 0 && !Starts(Text, End - 1); End--) {
        }
        return End > 0 ? Width(Text.substr(End - 1, Text.find(' ', End - 1) - (End - 1))) : 0;
    }

    // Each break is decided anew from the whole text since the one before.
    std::vector<std::string> Lines(const std::string& Text, float Limit, bool Whole, std::size_t Most) const {
        std::vector<std::string> Out(1);
        for (std::size_t From = 0, p = 0; p < Text.size() && Out.size() <= Most; p++) {
            float Behind = 0;
            for (std::size_t q = From; q <= p; q++) {
                Behind += Text[q] == ' ' ? Width(" ") : Starts(Text, q) ? WordBefore(Text, q) : 0;
            }
            const float Word = WordBefore(Text, p + 1);
            Out.back() += Text[p];
            if (Text[p] == '\n' || (Whole && Word < Limit && Behind + Word > Limit) || Behind > Limit) {
                Out.back().pop_back();
                Out.push_back(Text[p] == '\n' || Text[p] == ' ' || Out.size() == Most ? "" : Text.substr(p, 1));
                From = p + 1;
            }
        }
        return Out;
    }

    Corners Model(const std::string& Text, UINT32 Flags, const Vec4& r, float Scale) const {
        const float W = r.y - r.x, H = r.w - r.z, L = 15 * Scale;
        const int Least = Flags & FONT_WRAP ? 0 : 1;
        const int Most = Flags & FONT_SINGLELINE ? 1 : std::max(static_cast<int>(H / L), Least);
        const std::vector<std::string> Split = Lines(Text, W / Scale, !Least, Most);
        const float Lower = H - L * static_cast<float>(Split.size());
        float y = r.z + (Flags & FONT_BOTTOM ? Lower : 0) + (Flags & FONT_CENTERY ? Lower / 2 : 0);
        Corners Out;
        for (const std::string& Line : Split) {
            const float Room = W - Width(Line) * Scale;
            float x = r.x + (Flags & FONT_RIGHT ? Room : 0) + (Flags & FONT_CENTERX ? Room / 2 : 0);
            for (const char c : Line) {
                const float w = Width({c}), u = float((c - 32) % 16) / 16, v = 1 - float((c - 32) / 16) / 16;
                for (int k = 0; k < 4 && w > 0; k++) {
                    const float Right = k == 1 || k == 2, Foot = k > 1;
                    AddCorner(Out, x + Right * w * Scale, y + Foot * L, u + Right * w / 256, v - Foot * 10 / 512);
                }
                x += w * Scale;
            }
            y += L;
        }
        return Out;
    }

    static Corners LaidOut(GLFont& Font, const std::string& Text, UINT32 Flags, const Vec4& r, float Size) {
        Font.Layout(Text.c_str(), 0x80FF4020u, Flags, r.x, r.y, r.z, r.w, Size);
        Corners Out;
        for (const SVertex24& v : Font.Vertices) {
            AddCorner(Out, v.Pos.x, v.Pos.y, v.Tex.x, v.Tex.y + v.Pos.z + (v.Color == 0x80FF4020u ? 0.0f : 9.0f));
        }
        return Out;
    }

    std::string Table = std::string("\0\1\0\0\0\2\0\0\17\0\0\0\12\0\0\0\40", 17);
};

TEST_F(FontTest, AnyTextInAnyRectangleIsLaidOutAsThePlainModelSays) {
    std::mt19937 Random(36);
    const auto Below = [&](UINT32 Limit) { return static_cast<float>(Random() % Limit); };
    GLFont Font(0.5f);
    for (int i = 0; i < 4000; i++) {
        std::string Text(Random() % 40 + 1, ' ');
        for (char& c : Text) {
            c = "  \n abcMi.,09xyz\x7f\xe4"[Random() % 18];
        }
        const Vec4 Rect = {Below(9), 9 + Below(200), Below(9), 9 + Below(100)};
        const UINT32 Flags = Random() % 32 | (Random() % 2 ? FONT_WRAP : 0);
        const float Scale = i % 2 ? 1.0f : 0.5f;
        ASSERT_EQ(LaidOut(Font, Text, Flags, Rect, 30 * Scale), Model(Text, Flags, Rect, Scale))
            << "\"" << Text << "\" flags " << Flags << " to " << Rect.y << " and " << Rect.w;
    }
}

TEST_F(FontTest, WordsMoveWholeAndSizesThatAreNoneDrawNothing) {
    WriteText("Data/Engine/Font.dat", Table.substr(0, 17) + std::string(256, '\5'));
    GLFont Font(1);
    const auto Wrapped = [&](const char* Text, UINT32 Flags, float Width, float Height, float Size = 15) {
        LaidOut(Font, Text, Flags, {0, Width, 0, Height}, Size);
        return std::string(Font.Wrapped.CStr());
    };
    EXPECT_EQ(Wrapped("one two six", FONT_WRAP, 36, 90), "one two\nsix") << "the break takes the place of the blank";
    EXPECT_EQ(Wrapped("none", 0, 99, 99, 0) + Wrapped("less", 0, 99, 99, -15) + Wrapped("?", 0, 99, 99, NAN), "");
    EXPECT_EQ(Wrapped("?", FONT_WRAP, 99, NAN) + Wrapped("inside out", 0, 99, -99), "inside out");
    EXPECT_EQ(Font.Draw(nullptr, 0, 0, 0, 9, 0, 9, 15) | Font.Draw("", 0, 0, 0, 9, 0, 9, 15), 0);
}

TEST_F(FontTest, ATableThatIsCutOffOrHasNoUsableSizesLeavesAGameWithoutLetters) {
    const auto Loads = [](const std::string& Bytes) {
        WriteText("Data/Engine/Font.dat", Bytes);
        GLFont Font(1);
        EXPECT_EQ(Font.Draw("text", 0, 0, 0, 99, 0, 99, 15), Font.Loaded ? 0 : -1);
        return Font.Loaded;
    };
    EXPECT_TRUE(Loads(Table) && Loads(Table + "more"));
    for (std::size_t Bytes = 0; Bytes < Table.size(); Bytes++) {
        EXPECT_FALSE(Loads(Table.substr(0, Bytes))) << Bytes;
    }
    for (std::size_t Field = 0; Field < 16; Field += 4) {
        for (const char Byte : {'\0', '\x7f', '\xff'}) {
            EXPECT_FALSE(Loads(std::string(Table).replace(Field, 4, 4, Byte))) << Field;
        }
    }
    std::filesystem::remove("Data/Engine/Font.dat");
    EXPECT_FALSE(GLFont(1).Loaded) << "no table at all";
}

TEST_F(FontTest, TheGamesLettersReadOnSnow) {
    constexpr int WIDTH = 240, HEIGHT = 76;
    std::filesystem::remove_all("Data");
    std::filesystem::create_directory_symlink(SLOPERUSH_DATA_DIR, "Data");
    ShaderLibInit();
    ClearWindow(0.93f, 0.95f, 0.98f);
    glEnable(GL_BLEND);
    UseGuiProgram();
    GLFont Font(1);
    Font.Draw("Time left: 87", 0xFFCCD9E6u, FONT_CENTERX, 0, WIDTH, 4, HEIGHT, 24);
    Font.Draw("{Quick} brown fox, jumps @ 90%\n(lazy) dogs; \"Why?\" #1", ~0u, FONT_CENTERX, 0, WIDTH, 34, HEIGHT, 14);
    EXPECT_TRUE(Font.Vertices.Size() == 0 && GetInteger(GL_TEXTURE_BINDING_2D) == 0 && Font.Scale == 1);
    SPicture Part{WIDTH, HEIGHT, std::vector<UINT8>(3 * WIDTH * HEIGHT)};
    glReadPixels(0, 576 - HEIGHT, WIDTH, HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, Part.Rgb.data());
    EXPECT_TRUE(MatchesGolden(Part, "text", 2.0));
    ShaderLibFree();
    GShaderLib = nullptr;
}

} // namespace
