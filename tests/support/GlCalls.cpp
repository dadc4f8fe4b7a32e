#include "support/GlCalls.h"

#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <dlfcn.h>

namespace {

SGlRecording* Recording = nullptr;

INT32 Ask(GLenum Name) {
    INT32 Values[4] = {};
    glGetIntegerv(Name, Values);
    return Values[0];
}

SGlStep Step(UINT32 Clears, INT32 Vertices) {
    SGlStep Step = {Clears, Vertices, Ask(GL_FRAMEBUFFER_BINDING)};
    INT32 Viewport[4];
    glGetIntegerv(GL_VIEWPORT, Viewport);
    Step.Width = Viewport[2];
    Step.Program = Ask(GL_CURRENT_PROGRAM);
    Step.IndexBuffer = Ask(GL_ELEMENT_ARRAY_BUFFER_BINDING);
    Step.Blend = glIsEnabled(GL_BLEND);
    Step.BlendFrom = Ask(GL_BLEND_SRC_RGB);
    Step.BlendTo = Ask(GL_BLEND_DST_RGB);
    Step.DepthTest = glIsEnabled(GL_DEPTH_TEST) && Ask(GL_DEPTH_FUNC) == GL_LEQUAL;
    Step.DepthWrite = Ask(GL_DEPTH_WRITEMASK);
    Step.Culls = glIsEnabled(GL_CULL_FACE) && Ask(GL_FRONT_FACE) == GL_CW;
    float Range[2];
    glGetFloatv(GL_DEPTH_RANGE, Range);
    Step.DepthNear = Range[0];
    Step.DepthFar = Range[1];
    return Step;
}

void RepeatIf(bool IsSo, const std::string& Call, INT32 What) {
    if (IsSo) {
        Recording->Repeats.push_back(Call);
        Recording->Repeats.back().append(" ").append(std::to_string(What));
    }
}

template <int FLOATS>
bool HoldsUniform(INT32 Location, const float* Values) {
    std::array<float, FLOATS> Now;
    if (Location >= 0) {
        glGetUniformfv(static_cast<GLuint>(Ask(GL_CURRENT_PROGRAM)), Location, Now.data());
    }
    return Location < 0 || std::equal(Now.begin(), Now.end(), Values);
}

// What is looked at before a call goes on to OpenGL; by its arguments where they tell enough.
void Look(const std::string& Name, GLuint Value) {
    if (Name == "glClear") {
        Recording->Steps.push_back(Step(Value, 0));
    }
    RepeatIf(Name == "glUseProgram" && Ask(GL_CURRENT_PROGRAM) == static_cast<INT32>(Value), Name,
             static_cast<INT32>(Value));
}
void Look(const std::string&, GLenum, GLint, GLsizei Vertices) { // glDrawArrays
    Recording->Steps.push_back(Step(0, Vertices));
}
void Look(const std::string&, GLenum, GLsizei Vertices, GLenum, const void*) { // glDrawElements
    Recording->Steps.push_back(Step(0, Vertices));
}
void Look(const std::string& Name, GLint Location, GLint Value) {
    const float AsFloat = static_cast<float>(Value);
    RepeatIf(HoldsUniform<1>(Location, &AsFloat), Name, Location);
}
void Look(const std::string& Name, GLint Location, GLfloat Value) {
    RepeatIf(HoldsUniform<1>(Location, &Value), Name, Location);
}
void Look(const std::string& Name, GLint Location, GLsizei, const GLfloat* Values) {
    const bool Holds = Name == "glUniform2fv"   ? HoldsUniform<2>(Location, Values)
                       : Name == "glUniform3fv" ? HoldsUniform<3>(Location, Values)
                                                : HoldsUniform<4>(Location, Values);
    RepeatIf(Holds, Name, Location);
}
// An array is sent whole each time.
void Look(const std::string& Name, GLint Location, GLsizei Count, GLboolean, const GLfloat* Values) {
    RepeatIf(Location < 0 || (Count == 1 && HoldsUniform<16>(Location, Values)), Name, Location);
}
void Look(const std::string& Name, GLenum, GLuint Object) {
    RepeatIf(Name == "glBindTexture" && Ask(GL_TEXTURE_BINDING_2D) == static_cast<INT32>(Object), Name,
             static_cast<INT32>(Object));
}
template <class... A>
void Look(const std::string&, A...) {}

template <class... A>
void Note(const char* Name, A... Arguments) {
    if (!Recording) {
        return;
    }
    ++Recording->Calls[Name];
    Look(std::string(Name), Arguments...);
}

// Calls through one of GLEW's pointers.
template <auto* Pointer>
struct THook;
template <class R, class... A, R (**Pointer)(A...)>
struct THook<Pointer> {
    static inline R (*Real)(A...) = nullptr;
    static inline const char* Name = "";
    static R Call(A... Arguments) {
        Note(Name, Arguments...);
        return Real(Arguments...);
    }
    static void Swap(const char* CallName) {
        Name = CallName;
        const bool In = *Pointer != Call;
        Real = In ? *Pointer : Real;
        *Pointer = In ? Call : Real;
    }
};

// Puts the hooks in, or back the pointers that were there.
void SwapPointers() {
#define SWAP(Function) THook<&__glew##Function>::Swap("gl" #Function)
    SWAP(ActiveTexture);
    SWAP(ClientActiveTexture);
    SWAP(BindBuffer);
    SWAP(BindFramebuffer);
    SWAP(BlendFuncSeparate);
    SWAP(UseProgram);
    SWAP(Uniform1i);
    SWAP(Uniform1f);
    SWAP(Uniform2fv);
    SWAP(Uniform3fv);
    SWAP(Uniform4fv);
    SWAP(UniformMatrix4fv);
    SWAP(GetUniformLocation);
    SWAP(GetAttribLocation);
    SWAP(VertexAttribPointer);
    SWAP(EnableVertexAttribArray);
    SWAP(DisableVertexAttribArray);
    SWAP(GenerateMipmap);
}

} // namespace

SGlRecording::SGlRecording() {
    SwapPointers();
    Recording = this;
}

SGlRecording::~SGlRecording() {
    Recording = nullptr;
    SwapPointers();
}

int SGlRecording::Total() const {
    int Sum = 0;
    for (const auto& [Name, Count] : Calls) {
        Sum += Count;
    }
    return Sum;
}

// Calls of the functions that the library exports.
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
