// A context with a shader library, and shader files that show in the picture what they were given.
#pragma once

#include <GL/glew.h>

#include "graphics/ShaderLib.h"
#include "support/GlFixture.h"

class ShaderFixture : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        if (!IsSkipped()) {
            ShaderLibInit();
        }
    }
    void TearDown() override {
        if (GShaderLib) {
            glUseProgram(0);
            ShaderLibFree();
        }
        GlFixture::TearDown();
    }

    static constexpr const char* PLAIN_VERTEX = "void main() { gl_Position = gl_Vertex; }\n";

    // Colour of a quad over the whole window, drawn with the program.
    static SRgb DrawnColor(UINT32 Program) {
        glUseProgram(Program);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glRectf(-1.0f, 1.0f, 1.0f, -1.0f);
        return ReadWindow().At(100, 100);
    }

    static GArray<const char*> Macros(std::initializer_list<const char*> Names) {
        GArray<const char*> List;
        List.Reserve(static_cast<UINT32>(Names.size()));
        for (const char* Name : Names) {
            List.Add(Name);
        }
        return List;
    }

    static std::string Source(UINT32 Shader) {
        INT32 Length = 0;
        glGetShaderiv(Shader, GL_SHADER_SOURCE_LENGTH, &Length);
        std::string Text(static_cast<std::size_t>(Length), '\0');
        glGetShaderSource(Shader, Length, &Length, Text.data());
        Text.resize(static_cast<std::size_t>(Length));
        return Text;
    }

    static const SShaderProgram& Record(UINT32 Program) { return *GShaderLib->ProgramsById.at(Program); }
};
