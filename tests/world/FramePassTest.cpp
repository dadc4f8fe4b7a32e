// The passes of a picture as OpenGL sees them: their order, targets, programs and states, and how many calls they take.
#include "support/GlCalls.h"
#include "terrain/Terrain.h"
#include "world/LightStage.h"

#include <random>
#include <set>

namespace {

class FramePasses : public LightStage {
protected:
    void Start() override {
        LightStage::Start();
        GLevel->Sky.Load("Data/Textures/Sky/Morning.png");
        LookFrom({-150, 0, GROUND + 40}, {0, 0, GROUND + 10});
        PlaceBox({-60, 0, GROUND + 10}, {10, 10, 20});
        PlaceBox({40, 0, GROUND + 10}, {10, 10, 20}).RenderFlags = RENDER_TRANSPARENT | RENDER_ADDITIVE;
        PlaceBox({-60, 20, GROUND + 10}, {10, 10, 20}).RenderFlags = RENDER_NO_LIGHTS;
        Scene();
    }

    std::string TargetOf(const SGlStep& Step) const {
        const auto Name = [&](const GameRT& Target) { return static_cast<UINT32>(Step.Target) == Target.FBO; };
        EXPECT_EQ(Step.Width, Name(GLevel->ShadowRT)                  ? 2048
                              : Name(GLevel->SceneRT) || !Step.Target ? WINDOW_WIDTH
                                                                      : 1024);
        for (std::size_t i = 0; i < Lamps.size(); ++i) {
            if (Name(Lamps[i].ShadowTarget)) {
                return "lamp" + std::to_string(i);
            }
        }
        return Name(GLevel->SceneRT) ? "scene" : Name(GLevel->ShadowRT) ? "sun" : Step.Target ? "unknown" : "window";
    }

    static std::string ProgramOf(const SGlStep& Step) {
        const SShaderProgram* Program = GShaderLib->ProgramsById.at(static_cast<UINT32>(Step.Program));
        return Program->PSKey.CStr();
    }

    static std::string BlendOf(const SGlStep& Step) {
        const std::map<INT32, std::string> Names = {
            {GL_ONE, "one"}, {GL_SRC_ALPHA, "alpha"}, {GL_ONE_MINUS_SRC_ALPHA, "rest"}};
        return Step.Blend ? Names.at(Step.BlendFrom) + "," + Names.at(Step.BlendTo) : "solid";
    }

    // Target, then what is cleared or the program, what is drawn, how it is blended and how it is tested for depth.
    std::string Describe(const SGlStep& Step) const {
        EXPECT_TRUE(Step.DepthTest && Step.Culls);
        if (Step.Clears) {
            return TargetOf(Step) + " clear" + (Step.Clears & GL_COLOR_BUFFER_BIT ? " color" : "") +
                   (Step.Clears & GL_DEPTH_BUFFER_BIT ? " depth" : "");
        }
        const UINT32 Buffer = static_cast<UINT32>(Step.IndexBuffer);
        const char* What = Buffer == GLevel->Terrain->IndexBuffer ? " ground " : Buffer ? " mesh " : " array ";
        return TargetOf(Step) + " " + ProgramOf(Step) + What + BlendOf(Step) + (Step.DepthNear > 0 ? " far" : "") +
               (Step.DepthWrite ? "" : " masked");
    }

    // Steps that look alike and follow each other make one pass.
    std::vector<std::string> Passes(const SGlRecording& Recorded) const {
        std::vector<std::string> Out;
        for (const SGlStep& Step : Recorded.Steps) {
            const std::string Pass = Describe(Step);
            if (Out.empty() || Out.back() != Pass) {
                Out.push_back(Pass);
            }
        }
        return Out;
    }
};

TEST_F(FramePasses, ComeInTheirOrderWithTheirTargetsProgramsAndStates) {
    Hang(-60, 0, 60, 200, {1, 1, 1});
    Hang(40, 0, 60, 100, {1, 1, 1});
    const SGlRecording Recorded;
    GLevel->Render(1);
    const std::vector<std::string> Expected = {
        "scene clear color depth",
        "sun clear depth",
        "sun RenderShadow ground solid",
        "sun RenderShadow mesh solid",
        "sun RenderShadow mesh one,one",
        "lamp0 clear depth",
        "lamp0 RenderShadow ground solid",
        "lamp0 RenderShadow mesh solid",
        "lamp1 clear depth",
        "lamp1 RenderShadow ground solid",
        "lamp1 RenderShadow mesh one,one",
        "scene TerrainL_AMBDIR ground solid",
        "scene MeshL_AMBDIR mesh solid",
        "scene MeshL_AMBDIR mesh one,one",
        "scene Sky array solid far",
        "scene Sprite array alpha,one far masked",
        "scene TerrainL_SPOT ground one,one",
        "scene MeshL_SPOT mesh one,rest",
        "scene TerrainL_SPOT ground one,one",
        "scene MeshL_SPOT mesh one,one",
        "window PostProcess array solid",
    };
    EXPECT_EQ(Passes(Recorded), Expected);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(GetInteger(GL_BLEND) + GetInteger(GL_FRAMEBUFFER_BINDING), 0);
    EXPECT_EQ(GetInteger(GL_BLEND_SRC_RGB), GL_SRC_ALPHA);
    EXPECT_EQ(GCurLight, LIGHT_AMBDIR);
    EXPECT_EQ(static_cast<UINT32>(GetInteger(GL_CURRENT_PROGRAM)), GLevel->PostProgram);
}

TEST_F(FramePasses, OneMoreOfAMeshCostsAMatrixAndADrawAndNothingIsSetTwice) {
    const auto Count = [] {
        const SGlRecording Recorded;
        GLevel->Render(1);
        for (const std::string& Repeat : Recorded.Repeats) {
            EXPECT_EQ(Repeat.rfind("glBindTexture", 0), 0u) << Repeat;
        }
        // What the pictures before have left bound, a pass does not know.
        EXPECT_LE(Recorded.Repeats.size(), 8u);
        return std::pair(Recorded.Total(), Recorded.Steps.size());
    };
    const auto Before = Count();
    for (const float Y : {-40.0f, -30.0f, 40.0f, 30.0f}) {
        PlaceBox({-60, Y, GROUND + 10}, {8, 8, 20});
    }
    const auto After = Count();
    EXPECT_EQ(After.second - Before.second, 4u * 2) << "in the shadow map and in the picture";
    EXPECT_EQ(After.first - Before.first, 4 * 2 * 2);
}

// A box is missed if the middle of its shadow lies on ground in view.
TEST_F(FramePasses, CastersAreLeftOutOfTheSunsMapOnlyWhereTheirShadowsCantBeSeen) {
    std::mt19937 Random(1);
    std::uniform_real_distribution<float> Anywhere(-180, 180);
    for (int i = 0; i < 60; ++i) {
        PlaceBox({Anywhere(Random), Anywhere(Random), GROUND + 30}, {4, 4, 4});
    }
    int Shading = 0, LeftOut = 0;
    for (const float Angle : {0.3f, 2.4f, 4.0f}) {
        GLevel->Params.LightDir_Angle = Angle;
        GLevel->Params.LightDir_Pitch = 1.1f;
        LookFrom({-50, 0, GROUND + 40}, {0, 20, GROUND + 10});
        Frustum View;
        M_CameraFrustum(View);
        GLevel->RenderSunShadow(1);
        std::set<const IRenderable*> Drawn;
        for (const SDrawEntry& Entry : GLevel->SceneEntries) {
            Drawn.insert(Entry.Record->Client);
        }
        for (const SMeshClient& Client : Clients) {
            const Vec3 ToSun = GLevel->SunDirection();
            const Vec3 Shadow = Client.Pos - ToSun * ((Client.Pos.z - GROUND) / ToSun.z);
            const bool Seen = !M_BBoxOutsideFrustum({Shadow, Shadow}, View);
            EXPECT_TRUE(!Seen || Drawn.count(&Client)) << Client.Pos.x << " " << Client.Pos.y << " " << Angle;
            Shading += Seen;
            LeftOut += !Drawn.count(&Client);
        }
    }
    EXPECT_GT(Shading, 30);
    EXPECT_GT(LeftOut, 30);
}

} // namespace
