// Animation files, their store and playback. What the poses are compared with is playback once more, with values in
// place of pointers and of a store.
#include "anim/AnimInstance.h"
#include "support/Common.h"

#include <bit>
#include <list>
#include <optional>

namespace {

Quat Between(const Quat& a, const Quat& b, float t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t, a.w + (b.w - a.w) * t};
}

struct STrackModel {
    std::vector<std::pair<float, Quat>> Keys;
    float Length = 0;
    float Weight = 1;

    Quat At(float Time, bool Loop) const {
        auto Sorted = Keys;
        std::stable_sort(Sorted.begin(), Sorted.end(), [](auto& a, auto& b) { return a.first < b.first; });
        float t = Loop ? std::fmod(Time, Length) : std::clamp(Time, 0.0f, Length);
        t += Loop && t < 0 ? Length : 0;
        std::size_t Next = 0;
        while (Next < Sorted.size() && Sorted[Next].first <= Time) {
            ++Next;
        }
        const auto [Start, From] = Sorted[(Next + Sorted.size() - 1) % Sorted.size()];
        const auto [End, To] = Sorted[Next % Sorted.size()];
        std::vector<Quat> Points = {From, Between(From, To, 0.333333f), Between(From, To, 0.666667f), To};
        for (; Start != End && Points.size() > 1; Points.pop_back()) {
            for (std::size_t i = 0; i + 1 < Points.size(); ++i) {
                Points[i] = M_QuatSlerp(Points[i], Points[i + 1], (t - Start) / (End - Start));
            }
        }
        return Points[0];
    }
};

struct SAnimationModel {
    std::map<std::string, STrackModel> Tracks;
    float Length = 1;
};

struct SChannelModel {
    std::optional<SAnimationModel> Cur, Prev;
    float CurTime = 0, PrevTime = 0, Blend = 0, Rate = 0, LastStep = 0;
    bool Once = false;
    int Group = 0;

    // A bone's rotation and weight; nothing if no side moves it.
    std::optional<std::pair<Quat, float>> At(const std::string& Bone, float Ahead, bool Freezing) const {
        const STrackModel* c = Cur && Cur->Tracks.contains(Bone) ? &Cur->Tracks.at(Bone) : nullptr;
        const STrackModel* p = Prev && Prev->Tracks.contains(Bone) ? &Prev->Tracks.at(Bone) : nullptr;
        const bool DropsZeros = Prev && !Freezing;
        c = DropsZeros && c && c->Weight == 0 ? nullptr : c;
        p = DropsZeros && p && p->Weight == 0 ? nullptr : p;
        if (!c && !p) {
            return std::nullopt;
        }
        const auto Last = std::pair(p ? p->At(PrevTime + Ahead, !Once) : Quat(), p ? p->Weight : 0);
        const auto New = std::pair(c ? c->At(CurTime + Ahead, !Once) : Quat(), c ? c->Weight : 0);
        const float Part = Freezing ? Blend : New.second + Blend - Last.second;
        return !c   ? Last
               : !p ? New
                    : std::pair(M_QuatSlerp(Last.first, New.first, Part),
                                Last.second + (New.second - Last.second) * Blend);
    }

    void Start(const SAnimationModel& Anim, float NewRate, bool NewOnce) {
        SAnimationModel Still;
        for (const auto& Side : {Prev, Cur}) {
            for (const auto& [Bone, Track] : Side ? Side->Tracks : std::map<std::string, STrackModel>()) {
                const auto Pose = At(Bone, 0, true);
                Still.Tracks[Bone] = {{{0.0f, Pose->first}}, 1, Pose->second};
            }
        }
        Prev = Prev ? Still : Cur;
        Cur = Anim;
        PrevTime = CurTime;
        CurTime = NewOnce ? 0 : CurTime;
        Blend = 0;
        Rate = NewRate;
        Once = NewOnce;
    }

    bool GoesOn(float Step) {
        LastStep = Step;
        Blend = std::clamp(Blend + Rate * Step, 0.0f, 1.0f);
        Prev = Blend == 1 ? std::nullopt : Prev;
        for (float* Time : {&CurTime, &PrevTime}) {
            *Time = Once ? *Time + Step : std::fmod(*Time + Step, Cur->Length);
        }
        return !Once || CurTime <= Cur->Length;
    }
};

std::string Word(UINT32 Value) {
    return {char(Value >> 24), char(Value >> 16), char(Value >> 8), char(Value)};
}

std::string FileOf(const SAnimationModel& Anim) {
    const auto Number = [](float Value) { return Word(std::bit_cast<UINT32>(Value)); };
    std::string Bytes = "ANFL" + Number(Anim.Length) + Word(UINT32(Anim.Tracks.size()));
    for (const auto& [Bone, Track] : Anim.Tracks) {
        Bytes += Word(UINT32(Bone.size())) + Bone + Word(UINT32(Track.Keys.size()));
        for (const auto& [Time, q] : Track.Keys) {
            Bytes += Number(Time) + Number(q.x) + Number(q.y) + Number(q.z) + Number(q.w);
        }
    }
    return Bytes;
}

UINT32 Read(const std::string& Content, SAnimation& Anim) {
    GArray<UINT8> Bytes;
    std::for_each(Content.begin(), Content.end(), [&](char c) { Bytes.Add(static_cast<UINT8>(c)); });
    return AnimRead(Bytes, Anim);
}

class Animation : public TempDirTest {
protected:
    // Keys in any order, some at equal times, the first not always at 0.
    STrackModel Track(float Length) {
        STrackModel Made{{}, Length, 1};
        for (int i = Random.Whole(0, 5); i >= 0; --i) {
            Quat q = Random.Rotation();
            q.w = Random.Between(-1, 1);
            Made.Keys.emplace_back(i == 2 ? 0 : Length * static_cast<float>(Random.Whole(0, 8)) / 8,
                                   M_QuatNormalized(q));
        }
        return Made;
    }

    CRandom Random;
};

TEST_F(Animation, TracksFollowTheCurveAtAnyTimeWhateverTheOrderOfTheirKeysInTheFile) {
    for (int n = 0; n < 400; ++n) {
        const SAnimationModel Model = {{{"hip", Track(3)}, {"", Track(3)}}, 3};
        SAnimation Anim;
        ASSERT_EQ(Read(FileOf(Model), Anim), 1u);
        for (const auto& [Bone, Expected] : Model.Tracks) {
            const float Time = Random.Between(-5, 8);
            EXPECT_EQ(Anim.Tracks[Bone.c_str()].Sample(Time, n % 2), Expected.At(Time, n % 2)) << n;
        }
    }
}

TEST_F(Animation, DamageIsRefusedOrStopsTheRunInOrder) {
    const std::string Intact = FileOf({{{"hip", Track(2)}, {"knee", Track(2)}}, 2});
    SAnimation Anim;
    for (std::size_t Length = 0; Length < Intact.size(); ++Length) {
        EXPECT_EQ(Read(Intact.substr(0, Length), Anim), 0u) << Length;
    }
    EXPECT_FATAL(Read(FileOf({{}, 1}) + Intact, Anim), "-ASSERT-\nThis test expression is false:\nTrackCount != 0\n");
    EXPECT_FATAL(Read(FileOf({{{"hip", {}}}, 1}) + Intact, Anim), "ValueCount != 0\n");
    for (const float Time : {-0.001f, 1.001f, NAN}) {
        EXPECT_DEATH(Read(FileOf({{{"hip", {{{Time, {}}}}}}, 1}), Anim),
                     "k.Time <= Time && k.Time >= 0, file GameAnim");
    }
}

TEST_F(Animation, IsSharedUntilTheLastRelease) {
    for (const char* Name : {"a.anf", "b.anf", "c.anf"}) {
        WriteText(Name, std::string(Name[0] == 'c', ' ') + FileOf({{{"hip", Track(1)}}, 1}));
    }
    SAnimation* First = AnimAddRef("a.anf");
    SAnimation* Other = AnimAddRef("b.anf");
    EXPECT_EQ(AnimAddRef("a.anf"), First);
    AnimRelease(First);
    AnimRelease(Other);
    EXPECT_FATAL(AnimRelease(Other), "Animation can't be released... internal error.\n");
    EXPECT_EQ(GAnimsByName.Find("a.anf")->value->RefCount, 1);
    AnimRelease(First);
    EXPECT_TRUE(!GAnimsByName.root && !GAnimsByData.root);
    EXPECT_FATAL(AnimAddRef("c.anf"), "Animation file 'c.anf' not found..\n");
    EXPECT_FATAL(AnimAddRef("missing.anf"), "Animation file 'missing.anf' not found..\n");
}

TEST_F(Animation, ChannelsTakeTimesThatAreNoNumbersAndALengthOfZeroButNoWrongCalls) {
    SAnimation Two, Zero;
    ASSERT_EQ(Read(FileOf({{{"a", Track(2)}}, 2}), Two) + Read(FileOf({{{"a", {{{0, {}}}}}}, 0}), Zero), 2u);
    SAnimChannel Channel;
    Channel.Start(&Zero, 1, 0);
    for (const float Step : {0.5f, NAN, INFINITY, 0.5f}) {
        EXPECT_EQ(Channel.Advance(Step), 0u);
        EXPECT_EQ(Channel.CurTime, 0);
        EXPECT_EQ(Two.Tracks["a"].Sample(NAN, Step == 0.5f), Two.Tracks["a"].Sample(0, false));
    }
    Channel.Start(&Two, 1, 1);
    EXPECT_EQ(Channel.Advance(NAN), 1u);
    EXPECT_FATAL(Channel.Freeze(), "Prev && Cur\n");
    Channel.Prev = &Two;
    EXPECT_FATAL(Channel.Start(&Two, 1, 0), "Prev == 0\n");
}

TEST_F(Animation, RandomPlayOfManyAnimationsGivesThePosesOfThePlainModel) {
    std::map<std::string, SAnimationModel> Models;
    SAnimInstance Instance;
    std::list<SChannelModel> Channels;
    const std::vector<std::string> Bones = {"hip", "knee_l", "knee_r", "neck", "hand_l", "hand_r"};
    for (const std::string& Bone : Bones) {
        Instance.BoneNames.Add(Bone.c_str());
        Instance.Rotations.Add({1, 0, 0, 0});
    }
    for (const std::string Name : {"0walk", "1run", "2wave", "3cut", "4stab"}) {
        SAnimationModel& Model = Models[Name];
        Model.Length = Random.Between(0.3f, 2);
        std::string Weights = "nobody 1\r\n";
        for (std::size_t i = Random.Whole(0, 2); i < Bones.size(); i += Random.Whole(1, 3)) {
            STrackModel& Made = Model.Tracks[Bones[i]] = Track(Model.Length);
            Made.Weight = static_cast<float>(Random.Whole(0, 4)) / 4;
            Weights += "  " + Bones[i] + "\t" + std::to_string(Made.Weight) + " and more\n";
        }
        WriteText(Name + ".anf", FileOf(Model));
        WriteText(Name + ".wts", Weights);
        Instance.Add((Name + ".anf").c_str(), Name.c_str(), Name[0] < '2');
    }
    for (int Turn = 0; Turn < 5000; ++Turn) {
        if (Turn > 0 && Random.Whole(0, 6) == 0) {
            const auto Chosen = std::next(Models.begin(), Random.Whole(0, 4));
            const bool Once = Chosen->first[0] > '2', Group = Chosen->first[0] < '2';
            const float Rate = Random.Between(0.5f, 6);
            EXPECT_EQ(Instance.Play(Once, Chosen->first.c_str(), Rate), 1u);
            EXPECT_EQ(Instance.Play(Once, "unknown", Rate), 0u);
            auto Found = std::find_if(Channels.begin(), Channels.end(),
                                      [&](auto& c) { return c.Once == Once && c.Group == Group; });
            Found = Found == Channels.end() ? Channels.insert(Found, SChannelModel()) : Found;
            Found->Start(Chosen->second, Rate, Once);
            Found->Group = Group;
        }
        const float Step = Random.Between(0, 0.08f), Fraction = Random.Between(0, 1);
        Instance.Advance(Step);
        std::erase_if(Channels, [&](auto& c) { return !c.GoesOn(Step); });
        ASSERT_EQ(Instance.Channels.count, Channels.size());
        Instance.Evaluate(Fraction);
        for (UINT32 i = 0; i < Bones.size(); ++i) {
            Quat r;
            for (const SChannelModel& Channel : Channels) {
                if (const auto Pose = Channel.At(Bones[i], Channel.LastStep * Fraction, false)) {
                    const bool First = &Channel == &Channels.front();
                    r = M_QuatNormalized(First ? Pose->first : M_QuatSlerp(r, Pose->first, Pose->second));
                }
            }
            ASSERT_EQ(Instance.Rotations[i], r) << "turn " << Turn << " " << Bones[i];
        }
    }
}

} // namespace
