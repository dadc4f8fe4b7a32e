// Textures: picture files that are shared by path and counted, and two uncounted ways to make one.
//
// A texture id is the OpenGL name; 0 is no texture, and drawing with it binds none. The storage holds one record for
// each path that was asked for, compared byte for byte; TextureLoad adds an owner, TextureRelease takes one away, and
// the last one deletes the texture. What TextureLoadFile and TextureFromPixels return is not in the storage: the caller
// deletes it with glDeleteTextures. At the end of the program the storage forgets its records without calling OpenGL.
//
// Needs a current OpenGL context and ilInit and iluInit. Paths are relative to the working directory.
// Cost: a load reads, decodes, uploads and makes mipmaps, so it belongs into loading. A repeated TextureLoad is a
// look-up.
//
// Bad input: a file that cannot be read prints one line and gives id 0, which is stored and counted like any other and
// not tried again. All failed paths share the id 0: TextureRelease(0) takes an owner from one of them, whichever stands
// under the id, so it is accepted exactly as many times as there are owners of failed paths together. An id that the
// storage does not know is fatal in TextureAddRef and TextureRelease.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Types.h"

struct STextureRec {
    GString Name;       // as the first caller gave it
    INT32 RefCount = 0; // owners, at least 1 while the record is stored
    UINT32 Id = 0;      // 0 if the file could not be read
};

extern GMap<GString, STextureRec*> GTextureByName;

// Key 0 has the record of one failed path, the others are found by name only.
extern GMap<UINT32, STextureRec*> GTextureById;

UINT32 TextureLoad(const GString& Path);
void TextureAddRef(UINT32 Id);
void TextureRelease(UINT32 Id);

// The file as an RGBA8 texture with mipmaps, linear filters and repeat; 0 on failure. Binds texture 0 on success.
UINT32 TextureLoadFile(const char* Path);

// Pixels: RGBA, 8 bits a channel, rows one after another without padding; only read. Binds texture 0.
UINT32 TextureFromPixels(INT32 Width, INT32 Height, const void* Pixels);

// Reads a picture into a new DevIL image and leaves it bound: the caller deletes it. 0, with a line on standard output,
// if the file can't be read.
UINT32 TextureOpenImage(const char* Path);

// Copies the picture bound in DevIL as RGBA bytes into a new array that the caller frees with delete[], and deletes the
// DevIL image of which Image is the name. Always 1.
INT32 TextureCopyBoundImage(INT32& Width, INT32& Height, UINT8*& Pixels, UINT32& Image);

// Turns GL_TEXTURE_2D off on units 0 to 7; unit 7 stays active.
void TextureDisableUnits();
