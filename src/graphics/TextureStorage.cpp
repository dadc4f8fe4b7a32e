#include "graphics/TextureStorage.h"

#include <GL/glew.h>
#include <IL/il.h>
#include <IL/ilu.h>

#include "foundation/Diagnostics.h"

GMap<GString, STextureRec*> GTextureByName;
GMap<UINT32, STextureRec*> GTextureById;

namespace {

constexpr UINT32 TEXTURE_UNITS = 8;

STextureRec* FindStored(UINT32 Id, const char* Failure) {
    auto* Node = GTextureById.Find(Id);
    if (!Node) {
        FatalError(Failure, Id);
    }
    return Node->value;
}

STextureRec* AnyFailedRecord() {
    for (GMap<GString, STextureRec*>::Iterator It(GTextureByName); It.Valid(); It.Next()) {
        if (It.Value()->Id == 0) {
            return It.Value();
        }
    }
    return nullptr;
}

void Forget(STextureRec* Record) {
    const UINT32 Id = Record->Id;
    GTextureByName.Remove(Record->Name);
    GTextureById.Remove(Id);
    delete Record;
    if (Id) {
        glDeleteTextures(1, &Id);
        return;
    }
    // Other failed paths may still have owners; one of them takes the place under the common id.
    if (STextureRec* Next = AnyFailedRecord()) {
        GTextureById[0] = Next;
    }
}

UINT32 MakeMipmappedTexture() {
    UINT32 Id = 0;
    glGenTextures(1, &Id);
    glBindTexture(GL_TEXTURE_2D, Id);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    return Id;
}

} // namespace

UINT32 TextureOpenImage(const char* Path) {
    UINT32 Image = 0;
    ilGenImages(1, &Image);
    ilBindImage(Image);
    if (!ilLoadImage(Path)) {
        LogPrintf("Texture \"%s\" loading failed..\n", Path);
        ilDeleteImages(1, &Image);
        return 0;
    }
    return Image;
}

UINT32 TextureLoadFile(const char* Path) {
    UINT32 Image = TextureOpenImage(Path);
    if (!Image) {
        return 0;
    }
    ilConvertImage(IL_BGRA, IL_UNSIGNED_BYTE);

    const UINT32 Id = MakeMipmappedTexture();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, ilGetInteger(IL_IMAGE_WIDTH), ilGetInteger(IL_IMAGE_HEIGHT), 0, GL_BGRA,
                 GL_UNSIGNED_BYTE, ilGetData());
    glGenerateMipmap(GL_TEXTURE_2D);
    ilDeleteImages(1, &Image);
    glBindTexture(GL_TEXTURE_2D, 0);
    return Id;
}

UINT32 TextureLoad(const GString& Path) {
    if (auto* Node = GTextureByName.Find(Path)) {
        Node->value->RefCount += 1;
        return Node->value->Id;
    }
    STextureRec* Record = new STextureRec;
    Record->Name = Path;
    Record->Id = TextureLoadFile(Path.CStr());
    GTextureByName.Insert(Record->Name, Record);
    GTextureById[Record->Id] = Record;
    Record->RefCount += 1;
    return Record->Id;
}

void TextureAddRef(UINT32 Id) {
    FindStored(Id, "AddRef: Texture %d doesn't exist in the storage")->RefCount += 1;
}

void TextureRelease(UINT32 Id) {
    STextureRec* Record = FindStored(Id, "Release: Texture %d doesn't exist in the storage\n");
    Record->RefCount -= 1;
    if (Record->RefCount == 0) {
        Forget(Record);
    }
}

UINT32 TextureFromPixels(INT32 Width, INT32 Height, const void* Pixels) {
    constexpr INT32 COMPONENTS = 4;
    const UINT32 Id = MakeMipmappedTexture();
    gluBuild2DMipmaps(GL_TEXTURE_2D, COMPONENTS, Width, Height, GL_RGBA, GL_UNSIGNED_BYTE, Pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    return Id;
}

INT32 TextureCopyBoundImage(INT32& Width, INT32& Height, UINT8*& Pixels, UINT32& Image) {
    ILinfo Info;
    iluGetImageInfo(&Info);
    Width = static_cast<INT32>(Info.Width);
    Height = static_cast<INT32>(Info.Height);
    Pixels = new UINT8[std::size_t{4} * Info.Width * Info.Height];
    ilCopyPixels(0, 0, 0, Info.Width, Info.Height, 1, IL_RGBA, IL_UNSIGNED_BYTE, Pixels);
    ilDeleteImages(1, &Image);
    return 1;
}

void TextureDisableUnits() {
    for (UINT32 Unit = 0; Unit < TEXTURE_UNITS; Unit++) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        glDisable(GL_TEXTURE_2D);
    }
}
