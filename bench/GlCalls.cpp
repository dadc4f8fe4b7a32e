#include "bench/GlCalls.h"

#include <GL/glew.h>

#include <array>
#include <dlfcn.h>

namespace {

constexpr UINT32 ASKED[] = {GL_FRAMEBUFFER_BINDING,
                            GL_VIEWPORT,
                            GL_CURRENT_PROGRAM,
                            GL_ELEMENT_ARRAY_BUFFER_BINDING,
                            GL_BLEND,
                            GL_BLEND_SRC_RGB,
                            GL_BLEND_DST_RGB,
                            GL_DEPTH_TEST,
                            GL_DEPTH_FUNC,
                            GL_DEPTH_WRITEMASK,
                            GL_DEPTH_RANGE,
                            GL_CULL_FACE,
                            GL_FRONT_FACE};

SGlRecording* Recording = nullptr;

INT32 Ask(UINT32 Name) {
    std::array<INT32, 4> Values = {};
    glGetIntegerv(Name, Values.data());
    return Values[Name == GL_VIEWPORT ? 2 : 0];
}

void AddStep(INT32 Clears, INT32 Vertices) {
    Recording->Steps.push_back({Clears, Vertices, {}});
    for (const UINT32 Name : ASKED) {
        Recording->Steps.back().State[Name] = Ask(Name);
    }
}

void Look(const std::string& Name, const std::array<INT32, 4>& Arguments) {
    ++Recording->Calls;
    if (Name == "glClear") {
        AddStep(Arguments[0], 0);
    } else if (Name == "glDrawElements" || Name == "glDrawArrays") {
        AddStep(0, Arguments[Name == "glDrawArrays" ? 2 : 1]);
    } else if ((Name == "glUseProgram" && Ask(GL_CURRENT_PROGRAM) == Arguments[0]) ||
               (Name == "glBindTexture" && Ask(GL_TEXTURE_BINDING_2D) == Arguments[1])) {
        Recording->Repeats.push_back(Name);
    }
}

template <class T>
INT32 AsNumber(T Argument) {
    if constexpr (std::is_arithmetic_v<T>) {
        return static_cast<INT32>(Argument);
    }
    return 0;
}

template <class... A>
void Note(const char* Name, A... Arguments) {
    if (Recording) {
        const INT32 Numbers[] = {AsNumber(Arguments)..., 0, 0, 0, 0};
        Look(Name, {Numbers[0], Numbers[1], Numbers[2], Numbers[3]});
    }
}

template <auto* Pointer>
struct THook;
template <class R, class... A, R (**Pointer)(A...)>
struct THook<Pointer> {
    static inline R (*Real)(A...) = nullptr;
    static R Call(A... Arguments) {
        Note(static_cast<const void*>(Pointer) == &__glewUseProgram ? "glUseProgram" : "", Arguments...);
        return Real(Arguments...);
    }
    static void Swap() {
        const bool In = *Pointer != Call;
        Real = In ? *Pointer : Real;
        *Pointer = In ? Call : Real;
    }
};

// Puts the hooks in, or back what was there.
template <auto*... Pointers>
void SwapAll() {
    (THook<Pointers>::Swap(), ...);
}
constexpr auto SwapPointers =
    SwapAll<&__glewActiveTexture, &__glewClientActiveTexture, &__glewBindBuffer, &__glewBindFramebuffer,
            &__glewBlendFuncSeparate, &__glewUseProgram, &__glewUniform1i, &__glewUniform1f, &__glewUniform2fv,
            &__glewUniform3fv, &__glewUniform4fv, &__glewUniformMatrix4fv, &__glewGetUniformLocation,
            &__glewGetAttribLocation, &__glewVertexAttribPointer, &__glewEnableVertexAttribArray,
            &__glewDisableVertexAttribArray, &__glewGenerateMipmap>;

} // namespace

SGlRecording::SGlRecording() {
    SwapPointers();
    Recording = this;
}

SGlRecording::~SGlRecording() {
    Recording = nullptr;
    SwapPointers();
}

#define EXPORTED(Function, Parameters, ...)                                                                            \
    extern "C" void Function Parameters {                                                                              \
        static const auto Real = reinterpret_cast<decltype(&Function)>(dlsym(RTLD_NEXT, #Function));                   \
        Note(#Function, __VA_ARGS__);                                                                                  \
        Real(__VA_ARGS__);                                                                                             \
    }

EXPORTED(glEnable, (GLenum a), a)
EXPORTED(glDisable, (GLenum a), a)
EXPORTED(glEnableClientState, (GLenum a), a)
EXPORTED(glDisableClientState, (GLenum a), a)
EXPORTED(glBindTexture, (GLenum a, GLuint b), a, b)
EXPORTED(glTexParameteri, (GLenum a, GLenum b, GLint c), a, b, c)
EXPORTED(glBlendFunc, (GLenum a, GLenum b), a, b)
EXPORTED(glDepthMask, (GLboolean a), a)
EXPORTED(glDepthRange, (GLclampd a, GLclampd b), a, b)
EXPORTED(glViewport, (GLint a, GLint b, GLsizei c, GLsizei d), a, b, c, d)
EXPORTED(glDrawBuffer, (GLenum a), a)
EXPORTED(glReadBuffer, (GLenum a), a)
EXPORTED(glVertexPointer, (GLint a, GLenum b, GLsizei c, const void* d), a, b, c, d)
EXPORTED(glColorPointer, (GLint a, GLenum b, GLsizei c, const void* d), a, b, c, d)
EXPORTED(glTexCoordPointer, (GLint a, GLenum b, GLsizei c, const void* d), a, b, c, d)
EXPORTED(glNormalPointer, (GLenum a, GLsizei b, const void* c), a, b, c)
EXPORTED(glClear, (GLbitfield a), a)
EXPORTED(glDrawArrays, (GLenum a, GLint b, GLsizei c), a, b, c)
EXPORTED(glDrawElements, (GLenum a, GLsizei b, GLenum c, const void* d), a, b, c, d)
