// A stage for light: level grey ground, boxes and spot lights of the case's own, a dim sun and no fog, so that nothing
// in it hangs on what the shipped levels look like.
#pragma once

#include "graphics/Mesh.h"
#include "scene/LightClient.h"
#include "scene/MeshClient.h"
#include "world/LevelFixture.h"

#include <deque>

class LightStage : public LevelFixture {
protected:
    static constexpr float GROUND = 200;

    void Start() override {
        LevelFixture::Start();
        const std::string Ground = FlatGround(200);
        // The middle of a normal map's range is an even surface.
        WriteTga("Data/Levels/Grey.tga", 1, 1, 1, {128});
        const std::string Grey = " Data/Levels/Grey.tga";
        WriteText("Data/Levels/Flat.ter", "Data/Levels/Flat.tga" + Grey + Grey + Grey + Grey);
        LoadText("WLMF\n" + Ground + "scene cldst=1000 fdist=100000 fcr=0.9 fcg=0.2 fcb=0.1 lda=2 ldp=0.8 " +
                 "lcr=0.5 lcg=0.5 lcb=0.5\n");
        SLevelParams& P = GLevel->Params;
        P.AmbientColor_R = P.AmbientColor_G = P.AmbientColor_B = 0.08f;
        MakeBox();
    }

    void Finish() override {
        for (SMeshClient& Client : Clients) {
            GLevel->RemoveSpatialClient(&Client);
        }
        for (SLightClient& Light : Lamps) {
            GLevel->RemoveLight(&Light);
        }
        Clients.clear();
        Lamps.clear();
        MeshRelease(Box);
        glDeleteTextures(static_cast<GLsizei>(Made.size()), Made.data());
        LevelFixture::Finish();
    }

    // A row of pixels.
    UINT32 TextureOf(const std::vector<SRgb>& Row) {
        FBytes Pixels;
        for (const SRgb& Pixel : Row) {
            for (const int Channel : {Pixel.R, Pixel.G, Pixel.B, 255}) {
                Pixels.push_back(static_cast<UINT8>(Channel));
            }
        }
        Made.push_back(TextureFromPixels(static_cast<INT32>(Row.size()), 1, Pixels.data()));
        return Made.back();
    }

    SMeshClient& Place(SMesh* Mesh, const Vec3& Centre, const Vec3& Size) {
        SMeshClient& Client = Clients.emplace_back();
        Client.Mesh = Mesh;
        Client.SetPosition(Centre);
        Client.SetScale(Size);
        Client.UpdateBounds(true, true);
        GLevel->AddSpatialClient(&Client);
        return Client;
    }
    SMeshClient& PlaceBox(const Vec3& Centre, const Vec3& Size) { return Place(Box, Centre, Size); }

    // Straight down on the ground, from Height above it.
    SLightClient& Hang(float X, float Y, float Height, float Range, const Vec3& Color) {
        SLightClient& Light = Lamps.emplace_back();
        Light.Pos = Light.PrevPos = {X, Y, GROUND + Height};
        Light.Dir = Light.PrevDir = {0, 0, -1};
        Light.Angle = 40;
        Light.Range = Range;
        Light.Color = Color;
        Light.ShadowTarget.Create(1024, 1024, true, true, DEPTH_FORMAT_FLOAT, false, false);
        GLevel->AddLight(&Light);
        return Light;
    }

    static void LookDown(float Height, float Fov) {
        LookFrom({0, 0, GROUND + Height}, {0, 0, 0}, {0, 1, 0});
        GCamera.Fov = Fov;
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

    SMesh* Box = nullptr; // of one unit's size
    std::deque<SMeshClient> Clients;
    std::deque<SLightClient> Lamps;

private:
    void MakeBox() {
        SMesh Cube;
        Cube.Parts.Resize(1);
        for (int Face = 0; Face < 6; ++Face) {
            Vec3 Normal, Right, Up;
            (&Normal.x)[Face / 2] = Face % 2 ? 0.5f : -0.5f;
            (&Right.x)[(Face / 2 + 1) % 3] = Face % 2 ? 0.5f : -0.5f;
            (&Up.x)[(Face / 2 + 2) % 3] = 0.5f;
            for (const UINT32 Corner : {0, 1, 2, 0, 2, 3}) {
                Cube.Indices.Add(Cube.Vertices.count + Corner);
            }
            for (const Vec3& Corner : {-Right - Up, Up - Right, Right + Up, Right - Up}) {
                SMeshVertex Vertex;
                Vertex.Position = Normal + Corner;
                Vertex.Normal = Normal * 2;
                Cube.Vertices.Add(Vertex);
            }
        }
        SMeshPart& Part = Cube.Parts[0];
        Part.PS = Part.VS = "Mesh";
        Part.VertexCount = Cube.Vertices.count;
        Part.TriangleCount[0] = Cube.Indices.count / 3;
        Cube.AddTexture(0, "Texture", TextureOf({{170, 170, 170}}), 0);
        Cube.UpdatePoints();
        Cube.BuildBuffers();
        MeshAdd("[box]", Cube);
        Box = GMeshByName.Find("[box]")->value->Mesh;
    }

    std::vector<UINT32> Made;
};
