// The passes of a picture as OpenGL sees them: their order, targets, programs and states, and how many calls they take.
#include "bench/GlCalls.h"
#include "terrain/Terrain.h"
#include "world/LightStage.h"

#include <random>

namespace {

class FramePasses : public LightStage {
protected:
    void Start() override {
        LightStage::Start();
        GLevel->Sky.Load("Data/Textures/Sky/Morning.png");
        LookFrom({-150, 0, GROUND + 40}, {0, 0, GROUND + 10});
        Place({-60, 0, GROUND + 10}, {10, 10, 20});
        Place({40, 0, GROUND + 10}, {10, 10, 20}).RenderFlags = RENDER_TRANSPARENT | RENDER_ADDITIVE;
        Place({-60, 20, GROUND + 10}, {10, 10, 20}).RenderFlags = RENDER_NO_LIGHTS;
        Scene();
    }

    // Target and its width, then what is cleared or the program, what is drawn, how it is blended and tested for depth.
    static std::string Describe(const SGlStep& Step, const std::map<UINT32, std::string>& Targets) {
        const auto State = [&](UINT32 Name) { return static_cast<UINT32>(Step.State.at(Name)); };
        EXPECT_TRUE(State(GL_DEPTH_TEST) && State(GL_DEPTH_FUNC) == GL_LEQUAL && State(GL_CULL_FACE) &&
                    State(GL_FRONT_FACE) == GL_CW);
        std::string Out = Targets.at(State(GL_FRAMEBUFFER_BINDING)) + " " + std::to_string(State(GL_VIEWPORT));
        if (Step.Clears) {
            return Out + (Step.Clears & GL_COLOR_BUFFER_BIT ? " clear color" : " clear") +
                   (Step.Clears & GL_DEPTH_BUFFER_BIT ? " depth" : "");
        }
        const std::map<UINT32, const char*> Factors = {
            {GL_ONE, " one"}, {GL_SRC_ALPHA, " alpha"}, {GL_ONE_MINUS_SRC_ALPHA, " rest"}};
        const UINT32 Buffer = State(GL_ELEMENT_ARRAY_BUFFER_BINDING);
        Out.append(" ").append(GShaderLib->ProgramsById.at(State(GL_CURRENT_PROGRAM))->PSKey.CStr());
        Out += Buffer == GLevel->Terrain->IndexBuffer ? " ground" : Buffer ? " mesh" : " array";
        if (State(GL_BLEND)) {
            Out.append(Factors.at(State(GL_BLEND_SRC_RGB))).append(Factors.at(State(GL_BLEND_DST_RGB)));
        }
        return Out + (State(GL_DEPTH_RANGE) ? " far" : "") + (State(GL_DEPTH_WRITEMASK) ? "" : " masked");
    }
};

TEST_F(FramePasses, ComeInTheirOrderWithTheirTargetsProgramsAndStates) {
    Hang(-60, 0, 60, 200, {1, 1, 1});
    Hang(40, 0, 60, 100, {1, 1, 1});
    const std::map<UINT32, std::string> Targets = {{0, "window"},
                                                   {GLevel->SceneRT.FBO, "scene"},
                                                   {GLevel->ShadowRT.FBO, "sun"},
                                                   {Lamps[0].ShadowTarget.FBO, "lamp0"},
                                                   {Lamps[1].ShadowTarget.FBO, "lamp1"}};
    const SGlRecording Recorded;
    GLevel->Render(1);
    std::vector<std::string> Passes; // steps that look alike and follow each other make one
    for (const SGlStep& Step : Recorded.Steps) {
        const std::string Pass = Describe(Step, Targets);
        if (Passes.empty() || Passes.back() != Pass) {
            Passes.push_back(Pass);
        }
    }
    EXPECT_EQ(Passes, (std::vector<std::string>{
                          "scene 1024 clear color depth",
                          "sun 2048 clear depth",
                          "sun 2048 RenderShadow ground",
                          "sun 2048 RenderShadow mesh",
                          "sun 2048 RenderShadow mesh one one",
                          "lamp0 512 clear depth",
                          "lamp0 512 RenderShadow ground",
                          "lamp0 512 RenderShadow mesh",
                          "lamp1 512 clear depth",
                          "lamp1 512 RenderShadow ground",
                          "lamp1 512 RenderShadow mesh one one",
                          "scene 1024 TerrainL_AMBDIR ground",
                          "scene 1024 MeshL_AMBDIR mesh",
                          "scene 1024 MeshL_AMBDIR mesh one one",
                          "scene 1024 Sky array far",
                          "scene 1024 Sprite array alpha one far masked",
                          "scene 1024 TerrainL_SPOT ground one one",
                          "scene 1024 MeshL_SPOT mesh one rest",
                          "scene 1024 TerrainL_SPOT ground one one",
                          "scene 1024 MeshL_SPOT mesh one one",
                          "window 1024 PostProcess array",
                      }));
    EXPECT_TRUE(!glIsEnabled(GL_BLEND) && GetInteger(GL_BLEND_SRC_RGB) == GL_SRC_ALPHA && GCurLight == LIGHT_AMBDIR);
    EXPECT_FALSE(glGetError());
}

TEST_F(FramePasses, OneMoreOfAMeshCostsAMatrixAndADrawAndNothingIsSetTwice) {
    const auto Calls = [] {
        const SGlRecording Recorded;
        GLevel->Render(1);
        EXPECT_EQ(std::count(Recorded.Repeats.begin(), Recorded.Repeats.end(), "glUseProgram"), 0);
        EXPECT_LE(Recorded.Repeats.size(), 8u) << "what the pass before has bound, a pass does not know";
        return Recorded.Calls;
    };
    const int Before = Calls();
    for (const float Y : {-40.0f, -30.0f, 40.0f, 30.0f}) {
        Place({-60, Y, GROUND + 10}, {8, 8, 20});
    }
    EXPECT_EQ(Calls() - Before, 4 * 2 * 2) << "in the shadow map and in the picture";
}

// A box is missed if the middle of its shadow lies on ground in view.
TEST_F(FramePasses, CastersAreLeftOutOfTheSunsMapOnlyWhereTheirShadowsCantBeSeen) {
    std::mt19937 Random(1);
    std::uniform_real_distribution<float> Anywhere(-180, 180);
    std::vector<SMeshClient*> Boxes;
    for (int i = 0; i < 60; ++i) {
        Boxes.push_back(&Place({Anywhere(Random), Anywhere(Random), GROUND + 30}, {4, 4, 4}));
    }
    int Shading = 0, LeftOut = 0;
    for (const float Angle : {0.3f, 2.4f, 4.0f}) {
        GLevel->Params.LightDir_Angle = Angle;
        GLevel->Params.LightDir_Pitch = 1.1f;
        LookFrom({-50, 0, GROUND + 40}, {0, 20, GROUND + 10});
        Frustum View;
        M_CameraFrustum(View);
        GLevel->RenderSunShadow(1);
        const Vec3 ToSun = GLevel->SunDirection();
        for (const SMeshClient* Client : Boxes) {
            const Vec3 Shadow = Client->Pos - ToSun * ((Client->Pos.z - GROUND) / ToSun.z);
            const bool Seen = !M_BBoxOutsideFrustum({Shadow, Shadow}, View);
            const bool Drawn = std::any_of(GLevel->SceneEntries.begin(), GLevel->SceneEntries.end(),
                                           [&](const SDrawEntry& Entry) { return Entry.Record->Client == Client; });
            EXPECT_TRUE(!Seen || Drawn) << Client->Pos.x << " " << Client->Pos.y << " " << Angle;
            Shading += Seen;
            LeftOut += !Drawn;
        }
    }
    EXPECT_TRUE(Shading > 30 && LeftOut > 30) << Shading << " " << LeftOut;
}

} // namespace
