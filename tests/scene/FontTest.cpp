// Text: wrapping, alignment and quads against a plain model, what a damaged table does, and a kept picture.
#include "scene/GLFont.h"

#include <GL/glew.h>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

#include "foundation/Screen.h"
#include "graphics/ShaderLib.h"
#include "support/GoldenPicture.h"

namespace {

struct SRect {
    float Left, Right, Top, Bottom;
};

// A grid of 16 by 16 cells of 15 by 10 pixels in a picture of 256 by 512: a width is as many units as its byte says.
class FontTest : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        if (Ready) {
            for (int Code = 0; Code < 256; Code++) {
                Table += static_cast<char>(1 + Code * 7 % 13);
            }
            WriteText("Data/Engine/Font.dat", Table);
            WriteTga("Data/Engine/Font.tga", 16, 16, 4, std::vector<UINT8>(16 * 16 * 4, 255));
        }
    }

    float Width(const std::string& Text) const {
        float Sum = 0;
        for (const unsigned char c : Text) {
            Sum += c < 128 ? static_cast<float>(Table[17 + c]) : 0;
        }
        return Sum;
    }

    std::string Table = std::string("\0\1\0\0\0\2\0\0\17\0\0\0\12\0\0\0\40", 17);
};

// The lines of a text, each break decided anew from the whole text before it.
class CPlainLines {
public:
    CPlainLines(const FontTest& Test, float (FontTest::*Width)(const std::string&) const, const std::string& Text)
        : Measure([&Test, Width](const std::string& Part) { return (Test.*Width)(Part); }), Text(Text) {}

    std::vector<std::string> Split(float Limit, bool Whole, int Most) const {
        std::vector<std::string> Lines(1);
        std::size_t From = 0; // the first character behind the last break
        for (std::size_t p = 0; p < Text.size() && static_cast<int>(Lines.size()) <= Most; p++) {
            float Behind = 0;
            for (std::size_t q = From; q <= p; q++) {
                Behind += Text[q] == ' ' ? Measure(" ") : Starts(q) ? Measure(WordBefore(q)) : 0;
            }
            const float Word = Measure(WordBefore(p + 1));
            if (Text[p] == '\n' || (Whole && Word < Limit && Behind + Word > Limit) || Behind > Limit) {
                const bool Moves = Text[p] != ' ' && Text[p] != '\n' && static_cast<int>(Lines.size()) < Most;
                Lines.push_back(Moves ? Text.substr(p, 1) : "");
                From = p + 1;
            } else {
                Lines.back() += Text[p];
            }
        }
        return Lines;
    }

private:
    bool Starts(std::size_t p) const { return Text[p] != ' ' && (p == 0 || Text[p - 1] == ' '); }

    // The whole word that was the last to start in front of End.
    std::string WordBefore(std::size_t End) const {
        while (End > 0 && !Starts(End - 1)) {
            End--;
        }
        return End > 0 ? Text.substr(End - 1, Text.find(' ', End - 1) - (End - 1)) : "";
    }

    const std::function<float(const std::string&)> Measure;
    const std::string& Text;
};

// x, y, u, v of each corner in sixty-fourths of a unit and 65536ths of the picture.
using Corners = std::vector<std::array<long, 4>>;

std::array<long, 4> Corner(double x, double y, double u, double v) {
    return {std::lround(64 * x), std::lround(64 * y), std::lround(65536 * u), std::lround(65536 * v)};
}

class FontModelTest : public FontTest {
protected:
    Corners Model(const std::string& Text, UINT32 Flags, const SRect& r, float Scale) const {
        const float W = r.Right - r.Left, H = r.Bottom - r.Top, L = 15 * Scale;
        int Most = Flags & FONT_SINGLELINE ? 1 : static_cast<int>(H / L);
        Most = Most == 0 && !(Flags & FONT_WRAP) ? 1 : Most;
        const auto Lines = CPlainLines(*this, &FontModelTest::Width, Text).Split(W / Scale, Flags & FONT_WRAP, Most);
        const float Lower = H - L * static_cast<float>(Lines.size());
        Corners Out;
        float y = r.Top + (Flags & FONT_BOTTOM ? Lower : 0) + (Flags & FONT_CENTERY ? Lower / 2 : 0);
        for (const std::string& Line : Lines) {
            const float Room = W - Width(Line) * Scale;
            float x = r.Left + (Flags & FONT_RIGHT ? Room : 0) + (Flags & FONT_CENTERX ? Room / 2 : 0);
            for (const unsigned char c : Line) {
                if (c < 128) {
                    const float w = Width(std::string(1, static_cast<char>(c))), Right = x + w * Scale;
                    const double u = (c - 32) % 16 / 16.0, v = 1 - (c - 32) / 16 / 16.0;
                    const double uEnd = u + w / 256, vEnd = v - 10.0 / 512;
                    Out.insert(Out.end(), {Corner(x, y, u, v), Corner(Right, y, uEnd, v),
                                           Corner(Right, y + L, uEnd, vEnd), Corner(x, y + L, u, vEnd)});
                    x = Right;
                }
            }
            y += L;
        }
        return Most > 0 ? Out : Corners();
    }

    static Corners LaidOut(GLFont& Font, const std::string& Text, UINT32 Flags, const SRect& r, float Size) {
        Font.Layout(Text.c_str(), 0x80FF4020u, Flags, r.Left, r.Right, r.Top, r.Bottom, Size);
        Corners Out;
        for (const SVertex24& v : Font.Vertices) {
            EXPECT_TRUE(v.Color == 0x80FF4020u && v.Pos.z == 0);
            Out.push_back(Corner(v.Pos.x, v.Pos.y, v.Tex.x, v.Tex.y));
        }
        return Out;
    }
};

TEST_F(FontModelTest, AnyTextInAnyRectangleIsLaidOutAsThePlainModelSays) {
    std::mt19937 Random(36);
    const auto Below = [&](UINT32 Limit) { return static_cast<float>(Random() % Limit); };
    GLFont Font(0.5f);
    int Wrapped = 0;
    for (int i = 0; i < 4000; i++) {
        std::string Text;
        for (int Length = static_cast<int>(Random() % 40) + 1; Length > 0; Length--) {
            Text += " \n abcMi.,09xyz \x7f\xe4"[Random() % 18];
        }
        const SRect Rect = {Below(9), 9 + Below(200), Below(9), 9 + Below(100)};
        const UINT32 Flags = Random() % 32 | (Random() % 2 ? FONT_WRAP : 0);
        const float Scale = Random() % 2 ? 1.0f : 0.5f;
        const std::string Before = Text;
        EXPECT_EQ(LaidOut(Font, Text, Flags, Rect, 30 * Scale), Model(Text, Flags, Rect, Scale))
            << i << ": \"" << Text << "\" flags " << Flags << " in " << Rect.Right - Rect.Left << " by "
            << Rect.Bottom - Rect.Top;
        EXPECT_EQ(Font.Scale, 0.5f);
        Wrapped += Font.Wrapped != Text.c_str();
    }
    EXPECT_GT(Wrapped, 1000);
}

TEST_F(FontModelTest, WordsMoveWholeAndTextIsCutAtTheLastLine) {
    std::fill(Table.begin() + 17, Table.end(), '\5');
    WriteText("Data/Engine/Font.dat", Table);
    GLFont Font(1);
    const auto Wrapped = [&](const char* Text, UINT32 Flags, float Width, float Height) {
        Font.Layout(Text, 0, Flags, 0, Width, 0, Height, 15);
        return std::string(Font.Wrapped.CStr());
    };
    EXPECT_EQ(Wrapped("one two six", FONT_WRAP, 36, 90), "one two\nsix") << "the blank gives way to the break";
    EXPECT_EQ(Wrapped("one two", FONT_WRAP, 24, 90), "one \ntwo");
    EXPECT_EQ(Wrapped("enormous ox", FONT_WRAP, 20, 90), "enormous \nox");
    EXPECT_EQ(Wrapped("one\ntwo", FONT_SINGLELINE, 99, 90), "one\n");
    EXPECT_EQ(Wrapped("a\nb\nc\nd\ne", 0, 99, 47), "a\nb\nc\n");
    EXPECT_EQ(Wrapped("low", FONT_WRAP, 99, 14), "");
    EXPECT_EQ(Wrapped("low", 0, 99, 14), "low");
}

TEST_F(FontModelTest, SizesThatAreNoSizesDrawNothingAndRectanglesMayBeInsideOut) {
    GLFont Font(1);
    const float Nan = std::numeric_limits<float>::quiet_NaN();
    for (const float Size : {0.0f, -15.0f, Nan}) {
        EXPECT_TRUE(LaidOut(Font, "text", 0, {0, 100, 0, 100}, Size).empty()) << Size;
    }
    EXPECT_EQ(LaidOut(Font, "text", 0, {90, 0, 90, 0}, 15).size(), 4u);
    EXPECT_TRUE(LaidOut(Font, "text", FONT_WRAP, {0, 100, 0, Nan}, 15).empty());
    EXPECT_EQ(Font.Draw(nullptr, 0, 0, 0, 9, 0, 9, 15), 0);
    EXPECT_EQ(Font.Draw("", 0, 0, 0, 9, 0, 9, 15), 0);
}

TEST_F(FontTest, ATableThatIsCutOffOrHasNoUsableSizesLeavesAGameWithoutLetters) {
    const auto Loads = [](const std::string& Bytes) {
        WriteText("Data/Engine/Font.dat", Bytes);
        GLFont Font(1);
        EXPECT_EQ(Font.Draw("text", 0, 0, 0, 99, 0, 99, 15), Font.Loaded ? 0 : -1);
        return Font.Loaded;
    };
    EXPECT_TRUE(Loads(Table));
    EXPECT_TRUE(Loads(Table + "more"));
    for (std::size_t Bytes = 0; Bytes < Table.size(); Bytes++) {
        EXPECT_FALSE(Loads(Table.substr(0, Bytes))) << Bytes;
    }
    const std::string Absurd[] = {std::string(4, '\0'), "\xff\xff\xff\xff", "\xff\xff\xff\x7f"};
    for (std::size_t Field = 0; Field < 16; Field += 4) {
        for (const std::string& Value : Absurd) {
            EXPECT_FALSE(Loads(std::string(Table).replace(Field, 4, Value))) << Field;
        }
    }
    std::filesystem::remove("Data/Engine/Font.dat");
    EXPECT_FALSE(GLFont(1).Loaded);
    WriteText("Data/Engine/Font.dat", Table);
    std::filesystem::remove("Data/Engine/Font.tga");
    EXPECT_DEATH(GLFont(1), "FontTex.*GLFont");
}

TEST_F(FontTest, TheGamesLettersReadOnSnowAndOnPines) {
    constexpr int WIDTH = 240, HEIGHT = 76;
    std::filesystem::current_path(SLOPERUSH_DATA_DIR "/..");
    ShaderLibInit();
    {
        GLFont Font(1);
        ClearWindow(0.93f, 0.95f, 0.98f);
        glEnable(GL_SCISSOR_TEST);
        glScissor(WIDTH / 2, 0, WINDOW_WIDTH, WINDOW_HEIGHT);
        ClearWindow(0.07f, 0.16f, 0.12f);
        glDisable(GL_SCISSOR_TEST);
        glEnable(GL_BLEND);
        UseGuiProgram();
        Font.Draw("Time left: 87", M_PackColor({0.9f, 0.85f, 0.8f, 1}), FONT_CENTERX, 0, WIDTH, 4, 76, 24);
        Font.Draw("{Quick} brown fox, jumps @ 90%\n(lazy) dogs; \"Why?\" #1 & 2", 0xFFFFFFFFu, FONT_CENTERX, 0, WIDTH,
                  34, 76, 14);
        EXPECT_TRUE(Font.Vertices.Size() == 0 && GetInteger(GL_TEXTURE_BINDING_2D) == 0 && Font.Scale == 1);
        const SPicture Whole = ReadWindow();
        SPicture Part{WIDTH, HEIGHT, {}};
        for (int i = 0; i < WIDTH * HEIGHT; i++) {
            const SRgb Color = Whole.At(i % WIDTH, HEIGHT - 1 - i / WIDTH);
            Part.Rgb.insert(Part.Rgb.end(), {UINT8(Color.R), UINT8(Color.G), UINT8(Color.B)});
        }
        EXPECT_TRUE(MatchesGolden(Part, "text", 2.0));
    }
    ShaderLibFree();
    GShaderLib = nullptr;
}

} // namespace
