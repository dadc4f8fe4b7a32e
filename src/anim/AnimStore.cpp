#include "anim/Animation.h"
#include "foundation/Diagnostics.h"

GMap<GString, SAnimEntry*> GAnimsByName;
GMap<SAnimation*, SAnimEntry*> GAnimsByData;

SAnimation* AnimAddRef(const char* File) {
    if (auto* Found = GAnimsByName.Find(File)) {
        ++Found->value->RefCount;
        return &Found->value->Anim;
    }
    SAnimEntry* Entry = new SAnimEntry;
    Entry->Name = File;
    Entry->RefCount = 1;
    if (!AnimLoad(File, Entry->Anim)) {
        FatalError("Animation file '%s' not found..\n", File);
    }
    GAnimsByName.Insert(Entry->Name, Entry);
    GAnimsByData.Insert(&Entry->Anim, Entry);
    return &Entry->Anim;
}

void AnimRelease(SAnimation* Anim) {
    auto* Found = GAnimsByData.Find(Anim);
    if (!Found) {
        FatalError("Animation can't be released... internal error.\n");
    }
    SAnimEntry* Entry = Found->value;
    if (--Entry->RefCount > 0) {
        return;
    }
    GAnimsByName.Remove(Entry->Name);
    GAnimsByData.Remove(Anim);
    delete Entry;
}
