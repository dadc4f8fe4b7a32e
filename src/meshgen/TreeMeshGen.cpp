#include "meshgen/TreeMeshGen.h"

#include "foundation/Diagnostics.h"
#include "foundation/Scan.h"
#include "graphics/TextureStorage.h"
#include "meshgen/ScriptFields.h"
#include "meshgen/TreeBuild.h"

#include <algorithm>

namespace {

// A tree beyond these is a slip in a count; without a limit it would fill the memory or run for hours.
constexpr UINT64 MOST_VERTICES = 100000;
constexpr UINT32 MOST_COMMANDS = 1000000;

constexpr UINT32 PART_COUNT = 2; // wood, foliage

using enum EFieldForm;

constexpr SScriptField TRUNK_FIELDS[] = {
    {"subw", WholeCount, offsetof(STrunkFields, SubW)},      {"subh", WholeCount, offsetof(STrunkFields, SubH)},
    {"rotx", Range, offsetof(STrunkFields, Rot.x)},          {"roty", Range, offsetof(STrunkFields, Rot.y)},
    {"rotz", Range, offsetof(STrunkFields, Rot.z)},          {"rot2x", Range, offsetof(STrunkFields, Rot2.x)},
    {"rot2y", Range, offsetof(STrunkFields, Rot2.y)},        {"rot2z", Range, offsetof(STrunkFields, Rot2.z)},
    {"height", Range, offsetof(STrunkFields, Height)},       {"rad", Range, offsetof(STrunkFields, Rad)},
    {"radscale", Range, offsetof(STrunkFields, RadScale)},   {"basepush", Pair, offsetof(STrunkFields, BasePush)},
    {"ns_scale", Range, offsetof(STrunkFields, NoiseScale)}, {"ns_extx", Range, offsetof(STrunkFields, NoiseExt.x)},
    {"ns_exty", Range, offsetof(STrunkFields, NoiseExt.y)},  {"ns_extz", Range, offsetof(STrunkFields, NoiseExt.z)},
};

constexpr SScriptField TURN_FIELDS[] = {
    {"rotabsx", Range, offsetof(STurnFields, RotAbs.x)}, {"rotabsy", Range, offsetof(STurnFields, RotAbs.y)},
    {"rotabsz", Range, offsetof(STurnFields, RotAbs.z)}, {"rotrelx", Range, offsetof(STurnFields, RotRel.x)},
    {"rotrely", Range, offsetof(STurnFields, RotRel.y)}, {"rotrelz", Range, offsetof(STurnFields, RotRel.z)},
    {"rotqx", Range, offsetof(STurnFields, RotQ.x)},     {"rotqy", Range, offsetof(STurnFields, RotQ.y)},
    {"rotqz", Range, offsetof(STurnFields, RotQ.z)},
};

constexpr SScriptField BRANCH_FIELDS[] = {
    {"repeat", RoundedCount, offsetof(SBranchFields, Repeat)}, {"sub", RoundedCount, offsetof(SBranchFields, Sub)},
    {"subw", WholeCount, offsetof(SBranchFields, SubW)},       {"subh", WholeCount, offsetof(SBranchFields, SubH)},
    {"height", Range, offsetof(SBranchFields, Height)},        {"htscale", Range, offsetof(SBranchFields, HtScale)},
    {"htlerp", Range, offsetof(SBranchFields, HtLerp)},        {"heightq", Range, offsetof(SBranchFields, HeightQ)},
    {"radscale0", Range, offsetof(SBranchFields, RadScale0)},  {"radscale", Range, offsetof(SBranchFields, RadScale)},
};

constexpr SScriptField LEAF_FIELDS[] = {
    {"repeat", RoundedCount, offsetof(SLeafFields, Repeat)},
    {"extx", Range, offsetof(SLeafFields, ExtX)},
    {"exty", Range, offsetof(SLeafFields, ExtY)},
    {"heightq", Range, offsetof(SLeafFields, HeightQ)},
    {"depthq", Range, offsetof(SLeafFields, DepthQ)},
};

// An open loop.
struct SGenRepeat {
    INT32 Count = 1;      // passes asked for
    INT32 Left = 1;       // passes still to run
    INT32 Pos = 0;        // where the cursor returns to
    UINT32 BranchRep = 0; // 1: opened by a branch line
    UINT32 Pushed = 0;    // limbs that its passes left on the stack
};

class CTreeScript {
public:
    CTreeScript(const GString& FileName, const GString& Text, SMesh& Mesh)
        : File(FileName.CStr()), Text(Text), Mesh(Mesh) {
        Repeats.Push(SGenRepeat());
    }

    void Run();

private:
    void RunCommand(const GString& Word);
    void Shade();
    void ShadeField(const GString& Key);
    void Trunk();
    void Branch();
    void BranchRepeatEnd();
    void BranchEnd();
    void Leaf();
    void Repeat();
    void RepeatEnd();

    bool AtLineEnd() const { return F_RestOfLineEmpty(Pos, Text) != 0; }
    bool AtTextEnd() const { return Pos >= static_cast<INT32>(Text.Length()); }

    // The next key with its "=".
    GString ReadKey() {
        const GString Key = F_ReadString(Pos, Text, F_IsName);
        F_CheckChar(Pos, Text, '=');
        return Key;
    }
    bool ReadBranchFields(SBranchFields& Fields);
    bool ReadLeafFields(SLeafFields& Fields);
    void CheckLoopEnd() const;
    void CheckBranchLoop() const;
    void CheckRoom(UINT64 MoreVertices) const;
    void Log(const char* Word) const { LogPrintf("%*s%s\n", static_cast<int>(Repeats.Size()), "", Word); }

    // Limits of the counts too: a product that is too large has no room either.
    static UINT64 TubeVertices(INT32 Sides, INT32 Rings) {
        return 4 * static_cast<UINT64>(std::max(Sides, 0)) * static_cast<UINT64>(std::max(Rings, 0));
    }

    const char* File;
    const GString& Text;
    SMesh& Mesh;
    INT32 Pos = 0;
    bool ShadeSeen = false;
    bool TrunkSeen = false;
    INT32 CurrentPart = -1;
    SGenPart Wood;
    SGenPart Foliage;
    GStack<SGenRepeat> Repeats;
    SBranchStack Branches;
};

void CTreeScript::Run() {
    UINT32 Commands = 0;
    while (!AtTextEnd()) {
        F_SkipBlanks(Pos, Text);
        if (AtTextEnd()) {
            break;
        }
        if (++Commands > MOST_COMMANDS) {
            FatalError("Tree generator: more than %u commands were run, file: %s\n", MOST_COMMANDS, File);
        }
        RunCommand(F_ReadString(Pos, Text, F_IsPrintable));
        F_SkipLine(Pos, Text);
    }
    SGenPart* const Parts[PART_COUNT] = {&Wood, &Foliage};
    for (UINT32 i = 0; i < PART_COUNT; ++i) {
        if (Parts[i]->Vertices.count > 0) {
            Parts[i]->Weld(true);
            Parts[i]->ComputeNormals();
            Parts[i]->CopyToMesh(Mesh, i);
        }
    }
}

// Any other word makes its line a comment.
void CTreeScript::RunCommand(const GString& Word) {
    struct SCommand {
        const char* Word;
        void (CTreeScript::*Run)();
    };
    static constexpr SCommand COMMANDS[] = {
        {"shade", &CTreeScript::Shade},          {"trunk", &CTreeScript::Trunk},
        {"branch", &CTreeScript::Branch},        {"branch_repend", &CTreeScript::BranchRepeatEnd},
        {"branch_end", &CTreeScript::BranchEnd}, {"leaf", &CTreeScript::Leaf},
        {"repeat", &CTreeScript::Repeat},        {"repeat_end", &CTreeScript::RepeatEnd},
    };
    for (const SCommand& Command : COMMANDS) {
        if (Word == Command.Word) {
            (this->*Command.Run)();
            return;
        }
    }
}

void CTreeScript::CheckRoom(UINT64 MoreVertices) const {
    if (UINT64{Wood.Vertices.count} + Foliage.Vertices.count + MoreVertices > MOST_VERTICES) {
        FatalError("Tree generator: the tree has more than %llu vertices, file: %s\n",
                   static_cast<unsigned long long>(MOST_VERTICES), File);
    }
}

void CTreeScript::Shade() {
    if (ShadeSeen) {
        FatalError("Tree generator: shading is defined more than once, file: %s\n", File);
    }
    ShadeSeen = true;
    while (!AtLineEnd() && !AtTextEnd()) {
        const GString Key = F_ReadString(Pos, Text, F_IsAlpha);
        F_CheckChar(Pos, Text, '=');
        ShadeField(Key);
    }
}

void CTreeScript::ShadeField(const GString& Key) {
    if (Key == "part") {
        CurrentPart = F_ReadInteger(Pos, Text);
        if (CurrentPart < 0 || CurrentPart >= static_cast<INT32>(PART_COUNT)) {
            FatalError("Tree generator: there is no part %d, file: %s\n", CurrentPart, File);
        }
        return;
    }
    if (Key == "texflags") {
        F_ReadInteger(Pos, Text);
        return;
    }
    if (CurrentPart < 0) {
        FatalError("Tree generator: 'part' must come before '%s', file: %s\n", Key.CStr(), File);
    }
    const GString Value = F_ReadString(Pos, Text, F_IsPrintable);
    SMeshPart& Part = Mesh.Parts[static_cast<UINT32>(CurrentPart)];
    if (Key == "ps") {
        Part.PS = Value;
    } else if (Key == "vs") {
        Part.VS = Value;
    } else {
        Mesh.AddTexture(static_cast<UINT32>(CurrentPart), Key, TextureLoad(Value), 1);
    }
}

void CTreeScript::Trunk() {
    if (!ShadeSeen) {
        FatalError("Tree generator: shading is not defined at beginning, file: %s\n", File);
    }
    if (TrunkSeen) {
        FatalError("Tree generator: trunk is defined more than once, file: %s\n", File);
    }
    TrunkSeen = true;
    STrunkFields Fields;
    while (!AtLineEnd()) {
        const GString Key = ReadKey();
        if (!ReadScriptField(TRUNK_FIELDS, Key, Pos, Text, &Fields)) {
            FatalError("Tree generator: unknown 'trunk' parameter '%s', file %s\n", Key.CStr(), File);
        }
    }
    CheckRoom(TubeVertices(Fields.SubW, Fields.SubH));
    GrowTrunk(Fields, Wood, Branches);
    Log("TRUNK");
}

// True if the line has fields.
bool CTreeScript::ReadBranchFields(SBranchFields& Fields) {
    bool Any = false;
    for (; !AtLineEnd(); Any = true) {
        const GString Key = ReadKey();
        if (!ReadScriptField(BRANCH_FIELDS, Key, Pos, Text, &Fields) &&
            !ReadScriptField(TURN_FIELDS, Key, Pos, Text, &Fields.Turn)) {
            FatalError("Tree generator: unknown 'branch' parameter '%s', file %s\n", Key.CStr(), File);
        }
    }
    if (Fields.Repeat < 0) {
        FatalError("Tree generator: 'repeat' is negative, file: %s\n", File);
    }
    return Any;
}

void CTreeScript::Branch() {
    if (!TrunkSeen) {
        FatalError("Tree generator: branch defined before trunk, file: %s\n", File);
    }
    INT32 LinePos = Pos;
    F_PrevLine(LinePos, Text);
    const bool LaterPass = Repeats.Top().BranchRep && Repeats.Top().Pos == LinePos;
    SBranchFields Fields;
    Fields.SubW = Branches.Top().Sides;
    const bool HasFields = ReadBranchFields(Fields);
    if (LaterPass) {
        Fields.Sub = 0;
    } else if (HasFields && Fields.Repeat == 0) {
        return;
    } else {
        Repeats.Push({Fields.Repeat, Fields.Repeat, LinePos, 1});
    }
    CheckRoom(TubeVertices(Fields.Sub ? Fields.SubW : Branches.Top().Sides, Fields.SubH));
    GrowBranch(Fields, Wood, Branches);
    ++Repeats.Top().Pushed;
    Log(Fields.Sub ? "subbranch" : "branch");
}

void CTreeScript::CheckLoopEnd() const {
    if (Repeats.Size() < 2) {
        FatalError("Tree generator: more repeat/branch ends than repeats/branches, file %s\n", File);
    }
}

void CTreeScript::CheckBranchLoop() const {
    if (!Repeats.Top().BranchRep) {
        FatalError("-ASSERT-\nThis test expression is false:\n%s\n", "repeat.Top().BranchRep == TRUE");
    }
}

void CTreeScript::BranchRepeatEnd() {
    CheckLoopEnd();
    CheckBranchLoop();
    SGenRepeat& Loop = Repeats.Top();
    if (Loop.Left <= 0) {
        // A second one: the loop's passes have run.
        FatalError("Tree generator: more repeat/branch ends than repeats/branches, file %s\n", File);
    }
    if (--Loop.Left != 0) {
        Pos = Loop.Pos;
    }
}

void CTreeScript::BranchEnd() {
    CheckLoopEnd();
    CheckBranchLoop();
    SGenRepeat& Loop = Repeats.Top();
    if (--Loop.Left > 0) {
        Pos = Loop.Pos;
        return;
    }
    CapBranch(Wood, Branches);
    for (UINT32 i = 0; i < Loop.Pushed; ++i) {
        Branches.Pop();
    }
    Repeats.Pop();
}

// True if the line has fields.
bool CTreeScript::ReadLeafFields(SLeafFields& Fields) {
    bool Any = false;
    for (; !AtLineEnd(); Any = true) {
        const GString Key = ReadKey();
        if (!ReadScriptField(LEAF_FIELDS, Key, Pos, Text, &Fields) &&
            !ReadScriptField(TURN_FIELDS, Key, Pos, Text, &Fields.Turn)) {
            FatalError("Tree generator: unknown 'leaf' parameter '%s', file %s\n", Key.CStr(), File);
        }
    }
    if (Fields.Repeat < 0) {
        FatalError("Tree generator: 'repeat' is negative, file: %s\n", File);
    }
    return Any;
}

// Every leaf rolls all its fields anew, and the latest roll of "repeat" decides whether another one follows.
void CTreeScript::Leaf() {
    constexpr UINT64 LEAF_VERTICES = 12;
    if (!TrunkSeen) {
        FatalError("Tree generator: branch defined before trunk, file: %s\n", File);
    }
    const INT32 FieldsPos = Pos;
    for (INT32 i = 1;; ++i) {
        SLeafFields Fields;
        Pos = FieldsPos;
        if (ReadLeafFields(Fields) && Fields.Repeat == 0) {
            return;
        }
        CheckRoom(LEAF_VERTICES);
        GrowLeaf(Fields, Foliage, Branches);
        Log("leaf");
        if (i >= Fields.Repeat) {
            return;
        }
    }
}

void CTreeScript::Repeat() {
    if (!TrunkSeen) {
        FatalError("Tree generator: 'repeat' used before 'trunk', file: %s\n", File);
    }
    INT32 Count = 1;
    while (!AtLineEnd()) {
        const GString Key = F_ReadString(Pos, Text, F_IsAlpha);
        F_CheckChar(Pos, Text, '=');
        if (!(Key == "count")) {
            FatalError("Rock generator: unknown 'repeat' parameter, file %s\n", File);
        }
        Count = ReadWholeCount(Pos, Text);
    }
    Count = std::max(Count, 1);
    Repeats.Push({Count, Count, Pos, 0});
}

void CTreeScript::RepeatEnd() {
    CheckLoopEnd();
    if (Repeats.Top().BranchRep) {
        FatalError("-ASSERT-\nThis test expression is false:\n%s\n", "repeat.Top().BranchRep == FALSE");
    }
    if (--Repeats.Top().Left != 0) {
        Pos = Repeats.Top().Pos;
    } else {
        Repeats.Pop();
    }
}

} // namespace

UINT32 SMeshGenBase::Generate(const char* File) {
    FileName = File;
    return 1;
}

UINT32 STreeMeshGen::Generate(const char* File) {
    SMeshGenBase::Generate(File);
    GString Text;
    if (!F_ReadTextFile(FileName, Text)) {
        return 0;
    }
    Mesh.Clear();
    Mesh.Parts.Resize(PART_COUNT);
    CTreeScript(FileName, Text, Mesh).Run();
    return 1;
}
