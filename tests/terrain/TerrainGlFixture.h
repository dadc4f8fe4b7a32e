// Terrains from files: a working directory with detail textures, the physics world and the shader library.
#pragma once

#include <btBulletDynamicsCommon.h>
#include <string>
#include <vector>

#include "graphics/ShaderLib.h"
#include "graphics/TextureStorage.h"
#include "physics/Physics.h"
#include "support/GlFixture.h"
#include "terrain/TerrainFixture.h"

class TerrainGlFixture : public GlFixture {
protected:
    void SetUp() override {
        GlFixture::SetUp();
        if (!Ready) {
            return;
        }
        PhyInit();
        ShaderLibInit();
        for (const char* Name : {"a.tga", "b.tga", "c.tga", "d.tga"}) {
            WriteTga(Name, 1, 1, 1, {200});
        }
        // What the ground shows is its texture coordinate.
        WriteShaders("Terrain",
                     "uniform mat4 WorldMatrix;\n"
                     "void main() {\n"
                     "    gl_Position = ProjectionMatrix * (ViewMatrix * (WorldMatrix * gl_Vertex));\n"
                     "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
                     "}\n",
                     "Terrain", "void main() { gl_FragColor = vec4(0.0, gl_TexCoord[0].xy, 1.0); }\n");
    }
    void TearDown() override {
        if (Ready) {
            Terrain.Free();
            EXPECT_EQ(GTextureByName.Find("a.tga"), nullptr);
            EXPECT_EQ(GPhyWorld->getNumCollisionObjects(), 0);
            ShaderLibFree();
            PhyFree();
        }
        GlFixture::TearDown();
    }

    static void WritePicture(UINT32 Width, UINT32 Height) {
        std::vector<UINT8> Pixels(std::size_t{Width} * Height);
        for (std::size_t i = 0; i < Pixels.size(); i++) {
            Pixels[i] = Sample(static_cast<UINT32>(i % Width), static_cast<UINT32>(i / Width));
        }
        WriteTga("h.tga", static_cast<int>(Width), static_cast<int>(Height), 1, Pixels);
        WriteText("t.ter", "h.tga\na.tga\nb.tga\nc.tga\nd.tga\n");
    }

    static UINT8 Sample(UINT32 x, UINT32 y) { return static_cast<UINT8>(255 * Hills(x, y)); }

    // What the load prints.
    std::string Load(const char* Path) {
        testing::internal::CaptureStdout();
        Terrain.Load(Path);
        return testing::internal::GetCapturedStdout();
    }

    STerrain Terrain;
};
