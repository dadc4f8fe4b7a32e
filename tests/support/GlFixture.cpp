#include "support/GlFixture.h"

#include <GL/glew.h>
#include <IL/il.h>
#include <IL/ilu.h>
#include <SDL/SDL.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "foundation/Maths.h"
#include "foundation/Screen.h"
#include "platform/Platform.h"

namespace {

// Tells a death test's process in which directory the case works.
constexpr const char* DIR_VARIABLE = "SLOPERUSH_TEST_DIR";

// Empty if all went well. SDL is never left: the driver would be unloaded before a leak checker can name it.
std::string OpenWindow() {
    if (SDL_Init(SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) < 0) {
        return std::string("SDL_Init: ") + SDL_GetError();
    }
    SDL_GL_SetAttribute(SDL_GL_SWAP_CONTROL, 0);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    if (!SDL_SetVideoMode(WINDOW_WIDTH, WINDOW_HEIGHT, 32, SDL_OPENGL)) {
        return std::string("SDL_SetVideoMode: ") + SDL_GetError();
    }
    if (glewInit() != GLEW_OK) {
        return "glewInit failed";
    }
    ilInit();
    iluInit();
    return {};
}

void SetStartState() {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT);
    glUseProgram(0);
    for (GLenum Unit = 8; Unit-- > 0;) {
        glActiveTexture(GL_TEXTURE0 + Unit);
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDisable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glFrontFace(GL_CW);
    glEnable(GL_CULL_FACE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glClearColor(0.2f, 0.3f, 0.4f, 1.0f);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    while (glGetError() != GL_NO_ERROR) {
    }
}

void SetIdentityMatrices() {
    Mat4 Identity;
    M_Mat4RotationX(Identity, 0.0f);
    GViewMatrix = GProjectionMatrix = GWorldMatrix = Identity;
    GCamera = CameraState();
}

void PrintError(const char* Title, const char* Text) {
    std::fprintf(stderr, "%s\n%s\n", Title, Text);
}

// The row that comes Y rows below the top, in memory that begins with the lowest row.
std::size_t RowFromBottom(int Y, int Height, int RowBytes) {
    return static_cast<std::size_t>(Height - 1 - Y) * RowBytes;
}

} // namespace

std::ostream& operator<<(std::ostream& Out, const SRgb& Color) {
    return Out << "(" << Color.R << ", " << Color.G << ", " << Color.B << ")";
}

SRgb SPicture::At(int X, int Y) const {
    const UINT8* Pixel = &Rgb.at((static_cast<std::size_t>(Y) * Width + X) * 3);
    return {Pixel[0], Pixel[1], Pixel[2]};
}

void GlFixture::SetUp() {
    if (!PlatHasDisplay()) {
        GTEST_SKIP() << "needs a display; ./check starts one";
    }
    static const std::string Failure = OpenWindow();
    ASSERT_EQ(Failure, "");
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    GPlatform.ShowError = PrintError;
    SetStartState();
    SetIdentityMatrices();

    StartDir = std::filesystem::current_path();
    const char* Given = std::getenv(DIR_VARIABLE);
    OwnsDir = !Given;
    std::string Dir = Given ? Given : (std::filesystem::temp_directory_path() / "sloperush-test-XXXXXX").string();
    if (OwnsDir) {
        ASSERT_NE(mkdtemp(Dir.data()), nullptr);
        setenv(DIR_VARIABLE, Dir.c_str(), 1);
    }
    std::filesystem::current_path(Dir);
    std::filesystem::create_directories("Data/Shaders");
    std::filesystem::create_directories("Data/Textures");
}

void GlFixture::TearDown() {
    if (StartDir.empty()) {
        return;
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    PlatformRestore();
    const std::filesystem::path Dir = std::filesystem::current_path();
    std::filesystem::current_path(StartDir);
    if (OwnsDir) {
        std::filesystem::remove_all(Dir);
        unsetenv(DIR_VARIABLE);
    }
}

void GlFixture::WriteText(const std::string& Path, const std::string& Text) {
    const std::filesystem::path Folder = std::filesystem::path(Path).parent_path();
    if (!Folder.empty()) {
        std::filesystem::create_directories(Folder);
    }
    std::ofstream(Path, std::ios::binary) << Text;
}

std::string GlFixture::ReadText(const std::string& Path) {
    std::ostringstream Text;
    Text << std::ifstream(Path, std::ios::binary).rdbuf();
    return Text.str();
}

void GlFixture::WriteShaders(const std::string& VertexName, const std::string& VertexText, const std::string& PixelName,
                             const std::string& PixelText) {
    WriteText("Data/Shaders/" + VertexName + ".vsh", VertexText);
    WriteText("Data/Shaders/" + PixelName + ".psh", PixelText);
}

void GlFixture::WriteTga(const std::string& Path, int Width, int Height, int Channels,
                         const std::vector<UINT8>& Pixels) {
    constexpr char GREY = 3;
    constexpr char TRUE_COLOR = 2;
    constexpr char TOP_ROW_FIRST = 0x20;
    constexpr char ALPHA_BITS = 8;
    ASSERT_EQ(Pixels.size(), static_cast<std::size_t>(Width) * Height * Channels);
    std::string File(18, '\0');
    File[2] = Channels == 1 ? GREY : TRUE_COLOR;
    File[12] = static_cast<char>(Width & 255);
    File[13] = static_cast<char>(Width >> 8);
    File[14] = static_cast<char>(Height & 255);
    File[15] = static_cast<char>(Height >> 8);
    File[16] = static_cast<char>(8 * Channels);
    File[17] = static_cast<char>(TOP_ROW_FIRST | (Channels == 4 ? ALPHA_BITS : 0));
    File.append(Pixels.begin(), Pixels.end());
    // The file has blue first.
    for (std::size_t i = 18; Channels > 1 && i < File.size(); i += Channels) {
        std::swap(File[i], File[i + 2]);
    }
    WriteText(Path, File);
}

SPicture GlFixture::ReadPicture(int Width, int Height) {
    const int RowBytes = 3 * Width;
    std::vector<UINT8> Rows(static_cast<std::size_t>(RowBytes) * Height);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, Width, Height, GL_RGB, GL_UNSIGNED_BYTE, Rows.data());
    SPicture Picture{Width, Height, {}};
    for (int Y = 0; Y < Height; Y++) {
        const auto Row = Rows.begin() + static_cast<std::ptrdiff_t>(RowFromBottom(Y, Height, RowBytes));
        Picture.Rgb.insert(Picture.Rgb.end(), Row, Row + RowBytes);
    }
    return Picture;
}

SPicture GlFixture::ReadWindow() {
    return ReadPicture(WINDOW_WIDTH, WINDOW_HEIGHT);
}

std::vector<UINT8> GlFixture::ReadTexture(UINT32 Texture, int Width, int Height) {
    std::vector<UINT8> Pixels(std::size_t{4} * Width * Height);
    glBindTexture(GL_TEXTURE_2D, Texture);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, Pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return Pixels;
}

void GlFixture::ClearWindow(float R, float G, float B) {
    glClearColor(R, G, B, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}
