// A stage for light: level grey ground, boxes and spot lights of the case's own, a dim sun and no fog, so that nothing
// in it hangs on what the shipped levels look like.
#pragma once

#include "scene/LightClient.h"
#include "world/LevelFixture.h"
#include "world/MeshEntity.h"

#include <deque>

class LightStage : public LevelFixture {
protected:
    static constexpr float GROUND = 200;

    void Start() override {
        LevelFixture::Start();
        const std::string Ground = FlatGround(200);
        // The middle of a normal map's range is an even surface.
        WriteTga("Data/Levels/Grey.tga", 1, 1, 1, {128});
        // Without alpha no grain of the snow glints.
        WriteTga("Data/Levels/Dull.tga", 1, 1, 4, {128, 128, 128, 0});
        const std::string Dull = " Data/Levels/Dull.tga";
        WriteText("Data/Levels/Flat.ter", "Data/Levels/Flat.tga" + Dull + Dull + Dull + Dull);
        LoadText("WLMF\n" + Ground + "scene cldst=1000 fdist=100000 fcr=0.9 fcg=0.2 fcb=0.1 lda=2 ldp=0.8 " +
                 "lcr=0.5 lcg=0.5 lcb=0.5\n");
        GLevel->Params.AmbientColor_R = GLevel->Params.AmbientColor_G = GLevel->Params.AmbientColor_B = 0.08f;
        WriteText("Data/Levels/Box.obj",
                  "v -0.5 -0.5 -0.5\nv 0.5 -0.5 -0.5\nv 0.5 0.5 -0.5\nv -0.5 0.5 -0.5\nv -0.5 -0.5 0.5\n"
                  "v 0.5 -0.5 0.5\nv 0.5 0.5 0.5\nv -0.5 0.5 0.5\nvn 0 0 -1\nvn 0 0 1\nvn 0 -1 0\n"
                  "vn 0 1 0\nvn -1 0 0\nvn 1 0 0\nf 4//1 3//1 2//1 1//1\n"
                  "f 5//2 6//2 7//2 8//2\nf 1//3 2//3 6//3 5//3\nf 3//4 4//4 8//4 7//4\n"
                  "f 4//5 1//5 5//5 8//5\nf 2//6 3//6 7//6 6//6\n");
        WriteText("Data/Levels/Box.mdd", "model file=Data/Levels/Box.obj ps=Mesh vs=Mesh\n"
                                         "texture name=Texture file=Data/Levels/Grey.tga\n");
    }

    void Finish() override {
        for (SLightClient& Light : Lamps) {
            GLevel->RemoveLight(&Light);
        }
        Lamps.clear();
        LevelFixture::Finish();
    }

    // The mesh of a box is of one unit's size round its middle.
    static SMeshClient& Place(const Vec3& Middle, const Vec3& Size, const char* Mesh = "Data/Levels/Box.mdd") {
        GProperties Properties;
        Properties["MeshName"] = Mesh;
        Properties["Position"].Format(99, "%f;%f;%f", Middle.x, Middle.y, Middle.z);
        Properties["Scale"].Format(99, "%f;%f;%f", Size.x, Size.y, Size.z);
        auto* Entity = new CMeshEntity(Properties);
        GLevel->AddEntity(Entity);
        return Entity->Client;
    }

    // Straight down on the ground, from Height above it.
    SLightClient& Hang(float X, float Y, float Height, float Range, const Vec3& Color) {
        SLightClient& Light = Lamps.emplace_back();
        Light.Pos = Light.PrevPos = {X, Y, GROUND + Height};
        Light.Dir = Light.PrevDir = {0, 0, -1};
        Light.Angle = 40;
        Light.Range = Range;
        Light.Color = Color;
        Light.ShadowTarget.Create(512, 512, true, true, DEPTH_FORMAT_FLOAT, false, false);
        GLevel->AddLight(&Light);
        return Light;
    }

    static void LookDown(float Height, float Degrees) {
        LookFrom({0, 0, GROUND + Height}, {0, 0, 0}, {0, 1, 0});
        GCamera.Fov = Degrees;
    }

    // What stands in SceneRT behind a picture: before post-processing.
    static SPicture Scene(float BlendDelta = 1) {
        GLevel->Render(BlendDelta);
        SPicture Picture{WINDOW_WIDTH, WINDOW_HEIGHT, FBytes(3 * WINDOW_WIDTH * WINDOW_HEIGHT)};
        glBindTexture(GL_TEXTURE_2D, GLevel->SceneRT.ColorTex);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_UNSIGNED_BYTE, Picture.Rgb.data());
        return Picture;
    }

    // The pixel at which the last picture shows a place.
    static SRgb At(const SPicture& Picture, const Vec3& Place) {
        Vec3 Seen;
        M_Mat4MulPoint(GViewMatrix, Place, Seen);
        const float X = GProjectionMatrix[0] * Seen.x / -Seen.z;
        const float Y = GProjectionMatrix[5] * Seen.y / -Seen.z;
        return Picture.At(static_cast<int>((X + 1) / 2 * WINDOW_WIDTH), static_cast<int>((1 - Y) / 2 * WINDOW_HEIGHT));
    }
    static SRgb OnGround(const SPicture& Picture, float X, float Y) { return At(Picture, {X, Y, GROUND}); }
    std::deque<SLightClient> Lamps;
};
