// Letters drawn with FreeType from the one free typeface that the build found (ASSETGEN_TYPEFACE), as coverage.
//
// The only makers' input besides their names and sources: another version of the typeface or of the library may give
// other bytes. Sizes are pixels per em; positions are those of a CField. Good is false if the typeface can't be read;
// nothing is drawn then and all advances are 0.
#pragma once

#include "Canvas.h"

// How an outline is changed about its origin on the baseline before it is drawn; y is upward here.
struct SLetterForm {
    float ScaleX = 1, ScaleY = 1;
    float Lean = 0;   // x per y
    float Fall = 0;   // y per x, downward
    float Weight = 0; // pixels that strokes gain
};

// Left and right end of what is drawn of a letter, from its origin.
struct SInk {
    float Left = 0, Right = 0;
};

class CLettering {
public:
    // Hinted moves the heights of the letters to whole pixels of the size.
    CLettering(float Size, bool Hinted);
    ~CLettering();
    CLettering(const CLettering&) = delete;
    CLettering& operator=(const CLettering&) = delete;

    float Advance(char Letter) const; // pixels, without a form

    SInk InkOf(char Letter, const SLetterForm& Form) const;

    // Adds the letter's coverage, its origin at (x, y).
    void Draw(CField& Into, char Letter, float x, float y, const SLetterForm& Form) const;

    // The text along its falling baseline from (x, y), with Gap more pixels behind each letter.
    void DrawText(CField& Into, const char* Text, float x, float y, const SLetterForm& Form, float Gap) const;

    bool Good = false;

private:
    struct SFreeType;
    bool Load(char Letter) const;
    bool LoadFormed(char Letter, const SLetterForm& Form) const;

    SFreeType* Type;
};
