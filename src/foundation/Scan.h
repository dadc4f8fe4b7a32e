// The scanners that all text formats are read with: functions on a whole text and a position in it.
//
// The position belongs to the caller, counts bytes and is moved by the functions. It may be anything: one below 0 is
// taken as the start, one behind the end finds nothing. The text may hold any bytes, zeros too; it is never changed.
// Blanks are space, line feed and tab; a carriage return is one for F_SkipBlanks alone (F_ReadTextFile leaves none in
// front of a line feed).
// Bad data: a line on standard output, F_Error is set and a fixed value comes back. A parser goes on with that value;
// nothing here stops the program.
// Cost: linear in the characters passed over; only a returned string or a number of 32 characters and more allocates.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"
#include "foundation/Vector.h"

// 1 if the last F_ReadFloat, F_ReadInteger, F_ReadString or F_CheckChar failed, else 0.
extern UINT32 F_Error;

// What a failed F_ReadFloat and a failed F_ReadInteger return.
constexpr float F_BAD_FLOAT = 3.4028235e38f;
constexpr INT32 F_BAD_INTEGER = 0x7FFFFFFF;

// The whole file as it is. 1, or 0 if it does not open. A read that fails leaves the array at the file's size.
int F_ReadFile(const GString& Name, GArray<UINT8>& Bytes);

// The whole file as text, with CR LF read as LF. 1, or 0 if it does not open; the string is then empty.
int F_ReadTextFile(const GString& Name, GString& Text);

// Skips blanks and reads digits, ".", ",", and "-". A blank or the end of the text ends the number; any other character
// does so too if Strict is false, and is an error if it is true. No exponents and no "+".
float F_ReadFloat(INT32& Pos, const GString& Text, bool Strict);

// Skips blanks and reads digits and "-" up to a blank or the end of the text; any other character is an error. Numbers
// beyond 32 bits become the nearest that has 32.
INT32 F_ReadInteger(INT32& Pos, const GString& Text);

// Whether a character belongs to the word that F_ReadString reads. Blanks never do.
using FCharClass = bool (*)(char);
bool F_IsAlpha(char c);
bool F_IsName(char c);
bool F_IsPrintable(char c);

// Skips everything that is not of the class and reads what is. Stays on the character that ended the word.
GString F_ReadString(INT32& Pos, const GString& Text, FCharClass Class);

// Moves over the character and returns 1, or stays and returns 0 if another one stands there.
int F_CheckChar(INT32& Pos, const GString& Text, char Wanted);

// Floats with ";" between them, not strict. Whatever fails, as many floats are read as belong there.
Vec2 F_ReadVec2(INT32& Pos, const GString& Text);
Vec3 F_ReadVec3(INT32& Pos, const GString& Text);
Vec4 F_ReadVec4(INT32& Pos, const GString& Text);

// Moves over spaces, tabs, line feeds and carriage returns; always 1.
int F_SkipBlanks(INT32& Pos, const GString& Text);

// Moves just behind the next line feed and returns 1, or to the end and returns 0.
int F_SkipLine(INT32& Pos, const GString& Text);

// Moves back onto the nearest line feed before the position and returns 1, or to -1 and returns 0. From there
// F_SkipLine leads to the beginning of the line that the position was in.
int F_PrevLine(INT32& Pos, const GString& Text);

// 1 if only spaces and tabs stand before the next line feed or the end.
int F_RestOfLineEmpty(INT32 Pos, const GString& Text);
