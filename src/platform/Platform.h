// The layer for what the operating system gives: message box and question, file dialog, directories, files by path, the
// clock, the 15-bit random numbers and the place of the executable.
//
// Every service that a machine without a display or a test must answer differently goes through GPlatform, a table of
// function pointers. Tests put their own functions there and call PlatformRestore afterwards; nothing else writes it.
//
// Ownership: strings passed in are only read during the call. Strings are bytes in the file system's own encoding.
// Paths may be written with either slash; a backslash becomes a slash before the operating system sees it.
// Cost: each call is one or two system calls, but for the message box, the question and the file dialog, which wait for
// a person.
// Bad input: a path longer than PLAT_MAX_PATH - 1 bytes fails like a missing file.
#pragma once

#include <cstdint>
#include <cstdio>

constexpr int PLAT_MAX_PATH = 4096;

// The largest value of PlatRand.
constexpr int PLAT_RAND_MAX = 32767;

enum class EFileChoice { Chosen, Cancelled, Failed };

struct SPlatformServices {
    // Shows Text under Title with an error icon until it is dismissed. Without a display it goes to standard error.
    void (*ShowError)(const char* Title, const char* Text);

    // Asks a yes/no question; true is yes. Where nobody can answer, the result is Default.
    bool (*AskYesNo)(const char* Title, const char* Text, bool Default);

    // Lets a person choose an existing file whose name ends in Suffix, first shown those in Folder, which is absolute
    // and ends in a slash. Buffer holds the present choice or an empty text, and takes the new one if it is Chosen: an
    // absolute path. Without a program for it, each call takes the next file of the folder, and lists them on standard
    // output.
    EFileChoice (*ChooseFile)(const char* Title, const char* FilterName, const char* Suffix, const char* Folder,
                              char* Buffer, int Size);

    // Milliseconds since start-up, wrapping at 2^32.
    std::uint32_t (*Ticks)();
};

extern SPlatformServices GPlatform;

// Puts the real services back into GPlatform.
void PlatformRestore();

// True if a window system can be reached to show a box in.
bool PlatHasDisplay();

// The real ChooseFile.
EFileChoice PlatChooseFile(const char* Title, const char* FilterName, const char* Suffix, const char* Folder,
                           char* Buffer, int Size);

// Opens a file as fopen does. Text mode does not drop carriage returns: readers of text do so themselves.
FILE* PlatOpenFile(const char* Path, const char* Mode);

// Makes Path the working directory; false if that fails.
bool PlatChangeDir(const char* Path);

// Copies the working directory into Buffer; false if it does not fit or there is none.
bool PlatGetDir(char* Buffer, int Size);

// The path by which the system knows the running executable, or Fallback where the system does not tell.
// Unlike argv[0] it has a folder in it also when the program was found through PATH.
void PlatExecutablePath(char* Buffer, int Size, const char* Fallback);

// Whole numbers from 0 to PLAT_RAND_MAX from a linear congruential generator: the same row everywhere for one seed.
// The seed is 1 until PlatSeedRand is called.
int PlatRand();
void PlatSeedRand(std::uint32_t Seed);

// PlatRand as a float from 0 to 1, both ends included.
inline float PlatRandUnit() {
    return static_cast<float>(PlatRand() / 32767.0);
}

// Reports a broken promise between two pieces of code on standard error and aborts. Active in every build.
[[noreturn]] void PlatAssertFailed(const char* Expression, const char* File, int Line);
