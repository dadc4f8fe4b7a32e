#include "graphics/TextureStorage.h"

#include <GL/glew.h>
#include <IL/il.h>

#include "support/GlFixture.h"

namespace {

constexpr const char* RED = "Data/Textures/Red.tga";
constexpr const char* MISSING = "Data/Textures/Missing.png";
constexpr UINT32 UNKNOWN_ID = 4711;

class TextureStorageTest : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        if (!IsSkipped()) {
            WriteTga(RED, 2, 2, 3, std::vector<UINT8>{255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0});
        }
    }

    static INT32 Parameter(UINT32 Texture, GLenum Name) {
        INT32 Value = 0;
        glBindTexture(GL_TEXTURE_2D, Texture);
        glGetTexParameteriv(GL_TEXTURE_2D, Name, &Value);
        glBindTexture(GL_TEXTURE_2D, 0);
        return Value;
    }

    static INT32 LevelParameter(UINT32 Texture, INT32 Level, GLenum Name) {
        INT32 Value = 0;
        glBindTexture(GL_TEXTURE_2D, Texture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, Level, Name, &Value);
        glBindTexture(GL_TEXTURE_2D, 0);
        return Value;
    }

    // The name that the picture library gives next; it gives names that were given back first.
    static ILuint NextImageName() {
        ILuint Image = 0;
        ilGenImages(1, &Image);
        ilDeleteImages(1, &Image);
        return Image;
    }

    static std::string OutputOfLoad(const char* Path) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(TextureLoad(Path), 0u);
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(TextureStorageTest, OnePathIsOneTextureUntilItsLastOwnerReleasesIt) {
    const UINT32 Id = TextureLoad(RED);
    ASSERT_NE(Id, 0u);
    EXPECT_EQ(TextureLoad(RED), Id);
    TextureRelease(Id);
    EXPECT_TRUE(glIsTexture(Id));
    TextureRelease(Id);
    EXPECT_FALSE(glIsTexture(Id));
    EXPECT_EQ(GTextureByName.Find(RED), nullptr);
    EXPECT_EQ(GTextureById.Find(Id), nullptr);
}

TEST_F(TextureStorageTest, AddRefIsAnOwnerLikeALoad) {
    const UINT32 Id = TextureLoad(RED);
    TextureAddRef(Id);
    TextureRelease(Id);
    EXPECT_TRUE(glIsTexture(Id));
    TextureRelease(Id);
    EXPECT_FALSE(glIsTexture(Id));
}

TEST_F(TextureStorageTest, AnotherSpellingOfThePathIsAnotherTexture) {
    const UINT32 Id = TextureLoad(RED);
    const UINT32 Other = TextureLoad("Data/./Textures/Red.tga");
    EXPECT_NE(Id, Other);
    TextureRelease(Id);
    EXPECT_TRUE(glIsTexture(Other));
    TextureRelease(Other);
}

TEST_F(TextureStorageTest, ALoadAfterTheLastReleaseReadsTheFileAgain) {
    TextureRelease(TextureLoad(RED));
    WriteTga(RED, 1, 1, 3, {0, 255, 0});
    const UINT32 Id = TextureLoad(RED);
    EXPECT_EQ(ReadTexture(Id, 1, 1), (std::vector<UINT8>{0, 255, 0, 255}));
    TextureRelease(Id);
}

TEST_F(TextureStorageTest, UnknownIdsAreFatal) {
    EXPECT_FATAL(TextureAddRef(UNKNOWN_ID), "");
    EXPECT_EQ(ReadText("error.log"), "AddRef: Texture 4711 doesn't exist in the storage");
    WriteText("error.log", "");
    EXPECT_FATAL(TextureRelease(UNKNOWN_ID), "");
    EXPECT_EQ(ReadText("error.log"), "Release: Texture 4711 doesn't exist in the storage\n");
}

TEST_F(TextureStorageTest, AMissingFileIsReportedOnceAndReleasedOncePerOwner) {
    EXPECT_EQ(OutputOfLoad(MISSING), "Texture \"Data/Textures/Missing.png\" loading failed..\n");
    EXPECT_EQ(OutputOfLoad(MISSING), "");
    TextureRelease(0);
    EXPECT_NE(GTextureByName.Find(MISSING), nullptr);
    TextureRelease(0);
    EXPECT_EQ(GTextureByName.Find(MISSING), nullptr);
    EXPECT_FATAL(TextureRelease(0), "Release: Texture 0 doesn't exist in the storage");
}

TEST_F(TextureStorageTest, OwnersOfSeveralFailedPathsReleaseAsOftenAsTheyLoaded) {
    const char* const Paths[] = {"Data/A.png", "Data/B.png", "Data/A.png", "Data/C.png", "Data/C.png"};
    testing::internal::CaptureStdout();
    for (const char* Path : Paths) {
        TextureLoad(Path);
    }
    testing::internal::GetCapturedStdout();
    for (std::size_t i = 0; i < std::size(Paths); i++) {
        ASSERT_NE(GTextureById.Find(0), nullptr) << "before release " << i;
        TextureRelease(0);
    }
    EXPECT_EQ(GTextureById.Find(0), nullptr);
    for (const char* Path : Paths) {
        EXPECT_EQ(GTextureByName.Find(Path), nullptr) << Path;
    }
}

TEST_F(TextureStorageTest, NeitherAGoodNorAFailedLoadKeepsItsPicture) {
    const ILuint Name = NextImageName();
    OutputOfLoad(MISSING);
    EXPECT_EQ(NextImageName(), Name);
    TextureRelease(0);
    TextureRelease(TextureLoad(RED));
    EXPECT_EQ(NextImageName(), Name);
}

TEST_F(TextureStorageTest, AFileThatIsNoPictureFailsLikeAMissingOne) {
    WriteText(MISSING, "no picture at all");
    EXPECT_EQ(OutputOfLoad(MISSING), "Texture \"Data/Textures/Missing.png\" loading failed..\n");
    TextureRelease(0);
}

TEST_F(TextureStorageTest, GreyAndAlphaPicturesBothBecomeRGBA8) {
    WriteTga("Data/Grey.tga", 2, 1, 1, {100, 200});
    WriteTga("Data/Alpha.tga", 2, 1, 4, {10, 20, 30, 40, 50, 60, 70, 80});
    const UINT32 Grey = TextureLoadFile("Data/Grey.tga");
    const UINT32 Alpha = TextureLoadFile("Data/Alpha.tga");
    EXPECT_EQ(LevelParameter(Grey, 0, GL_TEXTURE_INTERNAL_FORMAT), GL_RGBA8);
    EXPECT_EQ(LevelParameter(Alpha, 0, GL_TEXTURE_INTERNAL_FORMAT), GL_RGBA8);
    EXPECT_EQ(ReadTexture(Grey, 2, 1), (std::vector<UINT8>{100, 100, 100, 255, 200, 200, 200, 255}));
    EXPECT_EQ(ReadTexture(Alpha, 2, 1), (std::vector<UINT8>{10, 20, 30, 40, 50, 60, 70, 80}));
    glDeleteTextures(1, &Grey);
    glDeleteTextures(1, &Alpha);
}

TEST_F(TextureStorageTest, AFilesTextureHasMipmapsAndRepeats) {
    const UINT32 Id = TextureLoadFile(RED);
    EXPECT_EQ(Parameter(Id, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(Parameter(Id, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_EQ(Parameter(Id, GL_TEXTURE_WRAP_S), GL_REPEAT);
    EXPECT_EQ(LevelParameter(Id, 1, GL_TEXTURE_WIDTH), 1);
    EXPECT_EQ(GTextureById.Find(Id), nullptr) << "a texture straight from a file is not counted";
    glDeleteTextures(1, &Id);
}

TEST_F(TextureStorageTest, PixelsArriveInOrderWithMipmaps) {
    std::vector<UINT8> Pixels(4 * 4 * 2);
    for (std::size_t i = 0; i < Pixels.size(); i++) {
        Pixels[i] = static_cast<UINT8>(7 * i);
    }
    const UINT32 Id = TextureFromPixels(4, 2, Pixels.data());
    EXPECT_EQ(ReadTexture(Id, 4, 2), Pixels);
    EXPECT_EQ(Parameter(Id, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(Parameter(Id, GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
    EXPECT_EQ(LevelParameter(Id, 2, GL_TEXTURE_WIDTH), 1);
    glDeleteTextures(1, &Id);
}

TEST_F(TextureStorageTest, TheBoundPictureIsCopiedAndDeleted) {
    WriteTga("Data/Row.tga", 3, 1, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    UINT32 Image = 0;
    ilGenImages(1, &Image);
    ilBindImage(Image);
    ASSERT_TRUE(ilLoadImage("Data/Row.tga"));
    INT32 Width = 0;
    INT32 Height = 0;
    UINT8* Pixels = nullptr;
    ASSERT_EQ(TextureCopyBoundImage(Width, Height, Pixels, Image), 1);
    EXPECT_EQ(Width, 3);
    EXPECT_EQ(Height, 1);
    EXPECT_EQ(std::vector<UINT8>(Pixels, Pixels + 12), (std::vector<UINT8>{1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255}));
    EXPECT_FALSE(ilIsImage(Image));
    delete[] Pixels;
}

TEST_F(TextureStorageTest, DisableUnitsTurnsAllEightOffAndEndsOnTheLast) {
    for (GLenum Unit = 0; Unit < 8; Unit++) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        glEnable(GL_TEXTURE_2D);
    }
    TextureDisableUnits();
    INT32 Active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &Active);
    EXPECT_EQ(Active, GL_TEXTURE7);
    for (GLenum Unit = 0; Unit < 8; Unit++) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D)) << "unit " << Unit;
    }
}

} // namespace
