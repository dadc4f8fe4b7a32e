#include "Lettering.h"

#include <algorithm>
#include <cmath>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

struct CLettering::SFreeType {
    FT_Library Library = nullptr;
    FT_Face Face = nullptr;
    FT_Int32 LoadFlags = FT_LOAD_NO_BITMAP;
};

namespace {

constexpr float PARTS = 64;         // FreeType's positions are in 64ths
constexpr float MATRIX_ONE = 65536; // and its matrices in 16.16

FT_Pos ToParts(float Pixels) {
    return static_cast<FT_Pos>(std::lround(Pixels * PARTS));
}

FT_Fixed ToFixed(float Value) {
    return static_cast<FT_Fixed>(std::lround(Value * MATRIX_ONE));
}

} // namespace

CLettering::CLettering(float Size, bool Hinted) : Type(new SFreeType) {
    Type->LoadFlags |= Hinted ? FT_LOAD_FORCE_AUTOHINT | FT_LOAD_TARGET_LIGHT : FT_LOAD_NO_HINTING;
    Good = !FT_Init_FreeType(&Type->Library) && !FT_New_Face(Type->Library, ASSETGEN_TYPEFACE, 0, &Type->Face) &&
           !FT_Set_Char_Size(Type->Face, 0, ToParts(Size), 0, 0);
}

CLettering::~CLettering() {
    FT_Done_Face(Type->Face);
    FT_Done_FreeType(Type->Library);
    delete Type;
}

bool CLettering::Load(char Letter) const {
    return Good && !FT_Load_Char(Type->Face, static_cast<unsigned char>(Letter), Type->LoadFlags);
}

float CLettering::Advance(char Letter) const {
    return Load(Letter) ? static_cast<float>(Type->Face->glyph->linearHoriAdvance) / MATRIX_ONE : 0;
}

bool CLettering::LoadFormed(char Letter, const SLetterForm& Form) const {
    if (!Load(Letter)) {
        return false;
    }
    FT_Outline& Outline = Type->Face->glyph->outline;
    FT_Matrix Matrix = {ToFixed(Form.ScaleX), ToFixed(Form.Lean * Form.ScaleY), ToFixed(-Form.Fall * Form.ScaleX),
                        ToFixed((1 - Form.Fall * Form.Lean) * Form.ScaleY)};
    FT_Outline_Transform(&Outline, &Matrix);
    FT_Outline_Embolden(&Outline, ToParts(Form.Weight));
    return true;
}

SInk CLettering::InkOf(char Letter, const SLetterForm& Form) const {
    FT_BBox Box = {};
    if (LoadFormed(Letter, Form)) {
        FT_Outline_Get_CBox(&Type->Face->glyph->outline, &Box);
    }
    return {static_cast<float>(Box.xMin) / PARTS, static_cast<float>(Box.xMax) / PARTS};
}

void CLettering::Draw(CField& Into, char Letter, float x, float y, const SLetterForm& Form) const {
    if (!LoadFormed(Letter, Form)) {
        return;
    }
    FT_Outline& Outline = Type->Face->glyph->outline;
    // The first pixel's middle is at (0, 0) and FreeType's rows grow upward from the lowest edge.
    FT_Outline_Translate(&Outline, ToParts(x + 0.5f), ToParts(static_cast<float>(Into.Height) - 0.5f - y));

    GArray<UINT8> Bytes;
    Bytes.Resize(static_cast<UINT32>(Into.Width * Into.Height));
    FT_Bitmap Bitmap = {};
    Bitmap.width = static_cast<unsigned>(Into.Width);
    Bitmap.rows = static_cast<unsigned>(Into.Height);
    Bitmap.pitch = Into.Width; // positive: the first row is the top one
    Bitmap.buffer = Bytes.Data;
    Bitmap.num_grays = 256;
    Bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    FT_Outline_Get_Bitmap(Type->Library, &Outline, &Bitmap);
    for (INT32 i = 0; i < Into.Width * Into.Height; ++i) {
        float& Value = Into.Ref(i % Into.Width, i / Into.Width);
        Value = std::max(Value, static_cast<float>(Bytes.Data[i]) / 255.0f);
    }
}

void CLettering::DrawText(CField& Into, const char* Text, float x, float y, const SLetterForm& Form, float Gap) const {
    for (; *Text; ++Text) {
        Draw(Into, *Text, x, y, Form);
        const float Step = Advance(*Text) * Form.ScaleX + Gap;
        x += Step;
        y += Step * Form.Fall;
    }
}
