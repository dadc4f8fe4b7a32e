#include "support/GlFixture.h"

#include <GL/glew.h>
#include <IL/il.h>
#include <IL/ilu.h>
#include <SDL/SDL.h>

#include "foundation/Screen.h"
#include "graphics/DrawingState.h"

namespace {

pid_t WindowOwner = 0;

// Tells a death test's process in which directory the case works.
constexpr const char* DIR_VARIABLE = "SLOPERUSH_TEST_DIR";

// SDL is left when the process ends and before a leak checker looks, so that nothing is reported that hangs on the
// driver's threads. A forked child has no such threads to wait for.
void LeaveWindow() {
    if (getpid() == WindowOwner) {
        SDL_Quit();
    }
}

bool OpenWindow() {
    if (SDL_Init(SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) < 0 ||
        !SDL_SetVideoMode(WINDOW_WIDTH, WINDOW_HEIGHT, 32, SDL_OPENGL) || glewInit() != GLEW_OK) {
        return false;
    }
    WindowOwner = getpid();
    std::atexit(LeaveWindow);
    ilInit();
    iluInit();
    SetDrawingState();
    glViewport(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT);
    glGetError(); // what glewInit may have left
    return true;
}

} // namespace

SRgb SPicture::At(int X, int Y) const {
    const UINT8* Pixel = &Rgb.at((static_cast<std::size_t>(Height - 1 - Y) * Width + X) * 3);
    return {Pixel[0], Pixel[1], Pixel[2]};
}

void GlFixture::SetUp() {
    if (!PlatHasDisplay()) {
        GTEST_SKIP() << "needs a display; ./check starts one";
    }
    // The directory comes first: a case whose context fails must not write where the program was started.
    const char* Given = std::getenv(DIR_VARIABLE);
    std::string Dir = Given ? Given : (fs::temp_directory_path() / "sloperush-test-XXXXXX").string();
    ASSERT_TRUE(Given || mkdtemp(Dir.data()));
    setenv(DIR_VARIABLE, Dir.c_str(), 1);
    StartDir = fs::current_path();
    fs::current_path(Dir);
    fs::create_directories("Data/Shaders");
    fs::create_directories("Data/Textures");

    static const bool Opened = OpenWindow();
    ASSERT_TRUE(Opened) << SDL_GetError();
    Ready = true;
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    GPlatform.ShowError = [](const char* Title, const char* Text) { std::fprintf(stderr, "%s\n%s\n", Title, Text); };
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    ClearWindow(0.2f, 0.3f, 0.4f);
    M_Mat4RotationX(GWorldMatrix, 0.0f);
    GViewMatrix = GProjectionMatrix = GWorldMatrix;
    GCamera = CameraState();
    Start();
}

// Not reached in a death test's process, which leaves the directory to the one that made it.
void GlFixture::TearDown() {
    if (Ready) {
        Finish();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glUseProgram(0);
        glPopAttrib();
        PlatformRestore();
    }
    if (!StartDir.empty()) {
        fs::current_path(StartDir);
        fs::remove_all(std::getenv(DIR_VARIABLE));
        unsetenv(DIR_VARIABLE);
    }
}

void GlFixture::WriteShaders(const std::string& VertexName, const std::string& VertexText, const std::string& PixelName,
                             const std::string& PixelText) {
    WriteText("Data/Shaders/" + VertexName + ".vsh", VertexText);
    WriteText("Data/Shaders/" + PixelName + ".psh", PixelText);
}

void GlFixture::WriteTga(const std::string& Path, int Width, int Height, int Channels,
                         const std::vector<UINT8>& Pixels) {
    const char Kind = Channels == 1 ? 3 : 2;               // grey or true colour
    const int Descriptor = 0x20 | (Channels == 4 ? 8 : 0); // top row first, bits of alpha
    std::string File = {0, 0, Kind, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (int Byte : {Width & 255, Width >> 8, Height & 255, Height >> 8, 8 * Channels, Descriptor}) {
        File += static_cast<char>(Byte);
    }
    for (std::size_t i = 0; i < Pixels.size(); i++) {
        const std::size_t Component = i % Channels;
        File += static_cast<char>(Pixels[Component < 3 && Channels > 1 ? i + 2 - 2 * Component : i]); // blue first
    }
    WriteText(Path, File);
}

SPicture GlFixture::ReadWindow() {
    SPicture Picture{WINDOW_WIDTH, WINDOW_HEIGHT, std::vector<UINT8>(3 * WINDOW_WIDTH * WINDOW_HEIGHT)};
    glReadPixels(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT, GL_RGB, GL_UNSIGNED_BYTE, Picture.Rgb.data());
    return Picture;
}

std::vector<UINT8> GlFixture::ReadTexture(UINT32 Texture, int Width, int Height) {
    std::vector<UINT8> Pixels(std::size_t{4} * Width * Height);
    glBindTexture(GL_TEXTURE_2D, Texture);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, Pixels.data());
    return Pixels;
}

void GlFixture::ClearWindow(float R, float G, float B) {
    glClearColor(R, G, B, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

INT32 GlFixture::GetInteger(UINT32 Name) {
    INT32 Value = -1;
    glGetIntegerv(Name, &Value);
    return Value;
}

INT32 GlFixture::TextureParameter(UINT32 Texture, UINT32 Name) {
    INT32 Value = -1;
    glBindTexture(GL_TEXTURE_2D, Texture);
    glGetTexParameteriv(GL_TEXTURE_2D, Name, &Value);
    return Value;
}
