#include "graphics/TextureStorage.h"

#include "support/GlFixture.h"

#include <GL/glew.h>
#include <IL/il.h>

namespace {

constexpr const char* RED = "Data/Textures/Red.tga";
constexpr const char* MISSING = "Data/Textures/Missing.png";

class TextureStorageTest : public GlFixture {
protected:
    void Start() override { WriteTga(RED, 2, 1, 3, {255, 0, 0, 255, 0, 0}); }

    // Deletes the texture.
    static void ExpectMipmapped(UINT32 Id, INT32 Width, INT32 Height, const FBytes& Pixels) {
        EXPECT_EQ(ReadTexture(Id, Width, Height), Pixels);
        EXPECT_EQ(TextureParameter(Id, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
        EXPECT_EQ(TextureParameter(Id, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
        EXPECT_EQ(TextureParameter(Id, GL_TEXTURE_WRAP_S), GL_REPEAT);
        INT32 HalfWidth = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 1, GL_TEXTURE_WIDTH, &HalfWidth);
        EXPECT_EQ(HalfWidth, Width / 2);
        EXPECT_EQ(GTextureById.Find(Id), nullptr) << "not counted";
        glDeleteTextures(1, &Id);
    }
};

TEST_F(TextureStorageTest, ATextureLivesAsLongAsItHasOwners) {
    // Two spellings are two paths; all failed paths have the id 0 and their owners in common.
    const char* const Paths[] = {RED, "Data/./Textures/Red.tga", MISSING, "Data/B.png", "Data/C.png"};
    std::map<UINT32, int> Owners; // the oracle
    const ILuint FreeImage = ilGenImage();
    ilDeleteImage(FreeImage);
    std::mt19937 Random(1);
    testing::internal::CaptureStdout();
    for (int Step = 0; Step < 2000; Step++) {
        const std::size_t Path = Random() % 5;
        const auto* Stored = GTextureByName.Find(Paths[Path]);
        UINT32 Id = Stored ? Stored->value->Id : 0;
        if (Random() % 7 < 3) {
            Id = TextureLoad(Paths[Path]);
            ASSERT_EQ(Id != 0, Path < 2);
            Owners[Id]++;
        } else if (Owners[Id] && Random() % 4 == 0) {
            TextureAddRef(Id);
            Owners[Id]++;
        } else if (Owners[Id]) {
            TextureRelease(Id);
            Owners[Id]--;
        }
        ASSERT_EQ(GTextureById.Find(Id) != nullptr, Owners[Id] > 0);
        ASSERT_EQ(glIsTexture(Id), Id && Owners[Id]);
    }
    for (auto& [Id, Count] : Owners) {
        for (; Count > 0; Count--) {
            TextureRelease(Id);
        }
    }
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(GTextureByName.root, nullptr);
    EXPECT_EQ(GTextureById.root, nullptr);
    EXPECT_EQ(ilGenImage(), FreeImage) << "a load kept its picture";
}

TEST_F(TextureStorageTest, UnknownIdsAreFatal) {
    EXPECT_FATAL(TextureAddRef(4711), "");
    EXPECT_FATAL(TextureRelease(4711), "");
    EXPECT_EQ(ReadText("error.log"), "AddRef: Texture 4711 doesn't exist in the storage"
                                     "Release: Texture 4711 doesn't exist in the storage\n");
}

TEST_F(TextureStorageTest, AFileThatIsMissingOrNoPictureIsReportedOnce) {
    for (int i = 0; i < 2; i++) {
        EXPECT_EQ(PrintedBy([] { EXPECT_EQ(TextureLoad(MISSING) + TextureLoad(MISSING), 0u); }),
                  "Texture \"Data/Textures/Missing.png\" loading failed..\n");
        TextureRelease(0);
        TextureRelease(0);
        WriteText(MISSING, "no picture at all");
    }
}

TEST_F(TextureStorageTest, FilesAndPixelsBecomeRGBAWithMipmaps) {
    WriteTga("Grey.tga", 2, 1, 1, {100, 200});
    WriteTga("Alpha.tga", 2, 1, 4, {10, 20, 30, 40, 50, 60, 70, 80});
    ExpectMipmapped(TextureLoadFile(RED), 2, 1, {255, 0, 0, 255, 255, 0, 0, 255});
    ExpectMipmapped(TextureLoadFile("Grey.tga"), 2, 1, {100, 100, 100, 255, 200, 200, 200, 255});
    ExpectMipmapped(TextureLoadFile("Alpha.tga"), 2, 1, {10, 20, 30, 40, 50, 60, 70, 80});
    FBytes Pixels(4 * 4 * 2);
    for (std::size_t i = 0; i < Pixels.size(); i++) {
        Pixels[i] = static_cast<UINT8>(7 * i);
    }
    ExpectMipmapped(TextureFromPixels(4, 2, Pixels.data()), 4, 2, Pixels);
}

} // namespace
