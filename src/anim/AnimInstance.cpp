#include "anim/AnimInstance.h"

SAnimInstance::~SAnimInstance() {
    for (GMap<GString, SAnimRef>::Iterator It(Anims); It.Valid(); It.Next()) {
        AnimRelease(It.Value().Anim);
    }
    for (SAnimation* Anim : Replaced) {
        AnimRelease(Anim);
    }
}

UINT32 SAnimInstance::Add(const char* File, const char* PlayName, INT32 Group) {
    SAnimRef& Ref = Anims[PlayName];
    if (Ref.Anim) {
        Replaced.Add(Ref.Anim);
    }
    Ref.Anim = AnimAddRef(File);
    Ref.Group = Group;
    return 1;
}

// The channel of that slot and group, or a new one at the end.
SAnimChannel& SAnimInstance::ChannelFor(UINT32 Slot, INT32 Group) {
    for (auto* Node = Channels.first; Node; Node = Node->next) {
        SAnimChannel& Channel = Node->obj;
        const bool FadesOut = Channel.Prev && !Channel.Cur;
        if (Channel.Once == Slot && Channel.Group == Group && !FadesOut) {
            return Channel;
        }
    }
    return Channels.Append(SAnimChannel())->obj;
}

UINT32 SAnimInstance::Play(UINT32 Slot, const char* PlayName, float BlendRate) {
    const auto* Found = Anims.Find(PlayName);
    if (!Found) {
        return 0;
    }
    SAnimChannel& Channel = ChannelFor(Slot, Found->value.Group);
    Channel.Start(Found->value.Anim, BlendRate, Slot);
    Channel.Group = Found->value.Group;
    return 1;
}

void SAnimInstance::Advance(float Step) {
    for (auto* Node = Channels.first; Node;) {
        auto* Next = Node->next;
        if (Node->obj.Advance(Step)) {
            Channels.Unlink(Node);
        }
        Node = Next;
    }
}

void SAnimInstance::Evaluate(float Fraction) {
    for (auto* Node = Channels.first; Node; Node = Node->next) {
        Node->obj.ResolveTracks(BoneNames);
    }
    for (UINT32 Bone = 0; Bone < BoneNames.count && Bone < Rotations.count; ++Bone) {
        Quat Result;
        for (auto* Node = Channels.first; Node; Node = Node->next) {
            Quat q;
            float Weight = 0;
            if (!Node->obj.SampleResolved(Bone, Fraction, q, Weight)) {
                continue;
            }
            Result = M_QuatNormalized(Node == Channels.first ? q : M_QuatSlerp(Result, q, Weight));
        }
        Rotations[Bone] = Result;
    }
}
