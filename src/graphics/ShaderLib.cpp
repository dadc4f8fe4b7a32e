#include "graphics/ShaderLib.h"

#include <GL/glew.h>
#include <cstring>

#include "foundation/Diagnostics.h"
#include "foundation/GCheck.h"
#include "foundation/Scan.h"

SShaderLib* GShaderLib = nullptr;

namespace {

// Stands in front of every vertex shader's text, so no such file declares the two itself.
constexpr const char* VERTEX_PREFIX =
    "\t\t\t\t\t\t uniform mat4 ViewMatrix;\t\t\t\t\t\t uniform mat4 ProjectionMatrix;";

GString MakeKey(const GString& Name, const GArray<const char*>& Macros) {
    GString Key(Name);
    for (const char* Macro : Macros) {
        Key += Macro;
    }
    return Key;
}

GString ShaderPath(const GString& Name, const char* Extension) {
    GString Path("Data/Shaders/");
    Path += Name;
    Path += Extension;
    return Path;
}

GString DefineLine(const char* Macro) {
    GCHECK_IN("GameShader", std::strlen(Macro) <= SHADER_MACRO_MAX, "strlen(Macro) <= SHADER_MACRO_MAX");
    GString Line("#define ");
    Line += Macro;
    Line += "\n";
    return Line;
}

void SetSource(UINT32 Shader, UINT32 Type, const GArray<const char*>& Macros, const GString& Text) {
    GArray<GString> Lines;
    Lines.Reserve(Macros.Size());
    for (const char* Macro : Macros) {
        Lines.Add(DefineLine(Macro));
    }
    // The addresses are taken when the lines no longer move.
    GArray<const char*> Strings;
    Strings.Reserve(Macros.Size() + 2);
    for (const GString& Line : Lines) {
        Strings.Add(Line.CStr());
    }
    Strings.Add(Type == GL_VERTEX_SHADER ? VERTEX_PREFIX : "");
    Strings.Add(Text.CStr());
    glShaderSource(Shader, static_cast<GLsizei>(Strings.Size()), Strings.Data, nullptr);
}

// Prints the log, if there is one, and stops. Both kinds of object have the same two questions to OpenGL.
void StopWithLog(UINT32 Object, decltype(glGetShaderiv) Get, decltype(glGetShaderInfoLog) GetLog, const char* Message) {
    INT32 Length = 0;
    Get(Object, GL_INFO_LOG_LENGTH, &Length);
    if (Length <= 0) {
        return;
    }
    GArray<char> Log;
    Log.Resize(static_cast<UINT32>(Length) + 1);
    Log[0] = 0;
    GetLog(Object, Length, nullptr, Log.Data);
    LogPrintf("%s\n", Log.Data);
    FatalError(Message, Log.Data);
}

// 0 if there is no such file.
UINT32 ShaderCompile(UINT32 Type, const GString& Path, const GArray<const char*>& Macros) {
    GString Text;
    if (!F_ReadTextFile(Path, Text)) {
        return 0;
    }
    const UINT32 Shader = glCreateShader(Type);
    SetSource(Shader, Type, Macros, Text);
    glCompileShader(Shader);
    INT32 Compiled = 0;
    glGetShaderiv(Shader, GL_COMPILE_STATUS, &Compiled);
    if (!Compiled) {
        StopWithLog(Shader, glGetShaderiv, glGetShaderInfoLog, "-SHADER COMPILE ERROR-\n%s\n");
    }
    return Shader;
}

UINT32 ShareShader(SShaderObject& Object, UINT32 Type, const GString& Path, const GArray<const char*>& Macros) {
    if (Object.Shader) {
        Object.RefCount += 1;
    } else {
        Object.Shader = ShaderCompile(Type, Path, Macros);
        Object.RefCount = 1;
    }
    return Object.Shader;
}

UINT32 LinkProgram(UINT32 VertexShader, UINT32 PixelShader) {
    const UINT32 Program = glCreateProgram();
    for (UINT32 Shader : {VertexShader, PixelShader}) {
        if (Shader) {
            glAttachShader(Program, Shader);
        }
    }
    glLinkProgram(Program);
    INT32 Linked = 0;
    glGetProgramiv(Program, GL_LINK_STATUS, &Linked);
    if (!Linked) {
        StopWithLog(Program, glGetProgramiv, glGetProgramInfoLog, "-SHADER PRORAM LINK ERROR-\n%s\n");
    }
    return Program;
}

void DeleteProgram(SShaderProgram* Record) {
    for (UINT32 Shader : {Record->VertexShader, Record->PixelShader}) {
        if (Shader) {
            glDetachShader(Record->Program, Shader);
        }
    }
    glDeleteProgram(Record->Program);
    delete Record;
}

void DeleteShaders(GMap<GString, SShaderObject>& Shaders) {
    for (GMap<GString, SShaderObject>::Iterator It(Shaders); It.Valid(); It.Next()) {
        glDeleteShader(It.Value().Shader);
    }
}

} // namespace

void ShaderLibInit() {
    GShaderLib = new SShaderLib;
}

void ShaderLibFree() {
    for (SShaderProgram* Record : GShaderLib->Programs) {
        DeleteProgram(Record);
    }
    DeleteShaders(GShaderLib->VertexShaders);
    DeleteShaders(GShaderLib->PixelShaders);
    delete GShaderLib;
    GShaderLib = nullptr;
}

UINT32 ShaderGetProgram(const GString& PixelShader, const GString& VertexShader, const GArray<const char*>& Macros) {
    const GString VSKey = MakeKey(VertexShader, Macros);
    const GString PSKey = MakeKey(PixelShader, Macros);
    for (const SShaderProgram* Record : GShaderLib->Programs) {
        if (Record->VSKey == VSKey && Record->PSKey == PSKey) {
            return Record->Program;
        }
    }

    SShaderProgram* Record = new SShaderProgram;
    Record->VSKey = VSKey;
    Record->PSKey = PSKey;
    Record->VertexShader =
        ShareShader(GShaderLib->VertexShaders[VSKey], GL_VERTEX_SHADER, ShaderPath(VertexShader, ".vsh"), Macros);
    Record->PixelShader =
        ShareShader(GShaderLib->PixelShaders[PSKey], GL_FRAGMENT_SHADER, ShaderPath(PixelShader, ".psh"), Macros);
    Record->Program = LinkProgram(Record->VertexShader, Record->PixelShader);
    GShaderLib->Programs.Add(Record);
    GShaderLib->ProgramsById[Record->Program] = Record;
    return Record->Program;
}
