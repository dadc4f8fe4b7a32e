// The pose of one skeleton with two channels, as every picture needs it: beside the slerps that the formulas ask for,
// and beside the plain form that finds each track by its bone's name.
#include "anim/AnimInstance.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr UINT32 BONES = 64;
constexpr UINT32 KEYS = 24;
constexpr float LENGTH = 2;
constexpr float STEP = 1 / 60.0f;
constexpr float FRACTION = 0.5f;

std::string BoneName(UINT32 i) {
    return "skeleton_left_bone_" + std::to_string(i);
}

void Put(std::string& Bytes, UINT32 Value) {
    Bytes += {static_cast<char>(Value >> 24), static_cast<char>(Value >> 16), static_cast<char>(Value >> 8),
              static_cast<char>(Value)};
}

void Put(std::string& Bytes, float Value) {
    Put(Bytes, std::bit_cast<UINT32>(Value));
}

std::string RandomAnimation(std::mt19937& Engine) {
    std::uniform_real_distribution<float> Part(-0.5f, 0.5f);
    std::string Bytes = "ANFL";
    Put(Bytes, LENGTH);
    Put(Bytes, BONES);
    for (UINT32 Bone = 0; Bone < BONES; ++Bone) {
        const std::string Name = BoneName(Bone);
        Put(Bytes, static_cast<UINT32>(Name.size()));
        Bytes += Name;
        Put(Bytes, KEYS);
        for (UINT32 Key = 0; Key < KEYS; ++Key) {
            const Quat q = M_QuatNormalized({Part(Engine), Part(Engine), Part(Engine), 1});
            for (const float Value : {LENGTH * static_cast<float>(Key) / KEYS, q.x, q.y, q.z, q.w}) {
                Put(Bytes, Value);
            }
        }
    }
    return Bytes;
}

// Two looping channels over all bones; Fading puts both into a cross-fade.
struct SPlaying {
    explicit SPlaying(bool Fading) {
        const auto Folder = std::filesystem::temp_directory_path() / ("bench-anim-" + std::to_string(getpid()));
        std::filesystem::create_directory(Folder);
        std::mt19937 Engine(5);
        for (INT32 i = 0; i < 4; ++i) {
            const std::string File = Folder / (std::to_string(i) + ".anf");
            std::ofstream(File, std::ios::binary) << RandomAnimation(Engine);
            Instance.Add(File.c_str(), std::to_string(i).c_str(), i % 2);
        }
        std::filesystem::remove_all(Folder);
        for (UINT32 i = 0; i < BONES; ++i) {
            Instance.BoneNames.Add(BoneName(i).c_str());
            Instance.Rotations.Add(Quat());
        }
        for (const char* Name : {"0", "1"}) {
            Instance.Play(0, Name, 1);
        }
        Instance.Advance(LENGTH / 3);
        for (const char* Name : {"2", "3"}) {
            if (Fading) {
                Instance.Play(0, Name, 1);
            }
        }
        Instance.Advance(STEP);
    }
    SAnimInstance Instance;
};

void Evaluate(benchmark::State& State, bool Fading) {
    SPlaying Playing(Fading);
    for (auto _ : State) {
        Playing.Instance.Evaluate(FRACTION);
        benchmark::DoNotOptimize(Playing.Instance.Rotations.Data);
        benchmark::ClobberMemory();
    }
}

void EvaluateByName(benchmark::State& State, bool Fading) {
    SPlaying Playing(Fading);
    SAnimInstance& Instance = Playing.Instance;
    for (auto _ : State) {
        for (UINT32 i = 0; i < BONES; ++i) {
            Quat Result;
            for (auto* Node = Instance.Channels.first; Node; Node = Node->next) {
                Quat q;
                float Weight = 0;
                if (Node->obj.Sample(Instance.BoneNames[i], FRACTION, q, Weight)) {
                    Result = M_QuatNormalized(Node == Instance.Channels.first ? q : M_QuatSlerp(Result, q, Weight));
                }
            }
            Instance.Rotations[i] = Result;
        }
        benchmark::DoNotOptimize(Instance.Rotations.Data);
        benchmark::ClobberMemory();
    }
}

// The curve of one track at the time that is drawn: four points and the place between them.
struct SCurve {
    Quat Points[4];
    float u;
};

std::vector<SCurve> CurvesOf(const SAnimation& Anim, const GArray<GString>& BoneNames, float Time) {
    const float At = std::fmod(Time, LENGTH);
    const UINT32 Key = static_cast<UINT32>(At * KEYS / LENGTH);
    std::vector<SCurve> Curves;
    for (const GString& Bone : BoneNames) {
        const SAnimTrack& Track = Anim.Tracks.Find(Bone)->value;
        const SAnimKey& A = Track.Keys[Key];
        const SAnimKey& B = Track.Keys[(Key + 1) % KEYS];
        Curves.push_back({{A.Value, A.Out, B.In, B.Value}, (At - A.Time) * KEYS / LENGTH});
    }
    return Curves;
}

Quat Bent(const SCurve& Curve) {
    const Quat P = M_QuatSlerp(Curve.Points[0], Curve.Points[1], Curve.u);
    const Quat Q = M_QuatSlerp(Curve.Points[1], Curve.Points[2], Curve.u);
    const Quat R = M_QuatSlerp(Curve.Points[2], Curve.Points[3], Curve.u);
    return M_QuatSlerp(M_QuatSlerp(P, Q, Curve.u), M_QuatSlerp(Q, R, Curve.u), Curve.u);
}

// The slerps of Evaluate on the same quaternions, and nothing else.
void BareSlerps(benchmark::State& State, bool Fading) {
    SPlaying Playing(Fading);
    SAnimInstance& Instance = Playing.Instance;
    std::vector<std::vector<SCurve>> Sides;
    for (auto* Node = Instance.Channels.first; Node; Node = Node->next) {
        const SAnimChannel& Channel = Node->obj;
        const float Ahead = Channel.LastStep * FRACTION;
        if (Channel.Prev) {
            Sides.push_back(CurvesOf(*Channel.Prev, Instance.BoneNames, Channel.PrevTime + Ahead));
        }
        Sides.push_back(CurvesOf(*Channel.Cur, Instance.BoneNames, Channel.CurTime + Ahead));
    }
    const float Blend = Instance.Channels.first->obj.Blend;
    if (Sides.size() != (Fading ? 4 : 2)) {
        std::abort();
    }
    for (auto _ : State) {
        for (UINT32 i = 0; i < BONES; ++i) {
            Quat Below = Bent(Sides[0][i]);
            Quat Above = Bent(Sides[1][i]);
            if (Fading) {
                Below = M_QuatSlerp(Below, Above, Blend);
                Above = M_QuatSlerp(Bent(Sides[2][i]), Bent(Sides[3][i]), Blend);
            }
            Instance.Rotations[i] = M_QuatSlerp(Below, Above, 1);
        }
        benchmark::DoNotOptimize(Instance.Rotations.Data);
        benchmark::ClobberMemory();
    }
}

BENCHMARK_CAPTURE(Evaluate, playing, false)->Name("evaluate");
BENCHMARK_CAPTURE(EvaluateByName, playing, false)->Name("evaluate_by_name");
BENCHMARK_CAPTURE(BareSlerps, playing, false)->Name("bare_slerps");
BENCHMARK_CAPTURE(Evaluate, fading, true)->Name("evaluate_fade");
BENCHMARK_CAPTURE(EvaluateByName, fading, true)->Name("evaluate_fade_by_name");
BENCHMARK_CAPTURE(BareSlerps, fading, true)->Name("bare_slerps_fade");

} // namespace
