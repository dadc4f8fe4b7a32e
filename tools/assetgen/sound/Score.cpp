#include "Score.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr float NORMAL = 0.8f, ACCENT = 1.0f, GHOST = 0.45f;
constexpr INT32 VOICES = 4;

// "C#5" and the like; leaves Text behind it. -1 if there is none.
INT32 ReadPitch(const char*& Text) {
    constexpr INT32 TONES[7] = {9, 11, 0, 2, 4, 5, 7}; // A to G
    if (*Text < 'A' || *Text > 'G') {
        return -1;
    }
    INT32 Pitch = TONES[*Text++ - 'A'];
    if (*Text == '#' || *Text == 'b') {
        Pitch += *Text++ == '#' ? 1 : -1;
    }
    if (*Text < '0' || *Text > '9') {
        return -1;
    }
    return Pitch + 12 * (*Text++ - '0' + 1);
}

struct SVoicing {
    INT32 Bass = 0;
    INT32 Voices[VOICES] = {};
    // The tone of that number, from 0; behind the last one the same an octave higher.
    INT32 Tone(INT32 Number) const { return Voices[Number % VOICES] + 12 * (Number / VOICES); }
};

class CReader {
public:
    CReader(const SScore& NewScore, SSong& NewSong) : Score(NewScore), Song(NewSong) {}
    bool ReadSection(const SSection& NewSection);

private:
    bool Fault(const char* What, const char* Text) const {
        std::fprintf(stderr, "score, section %s: %s: \"%.24s\"\n", Section->Name, What, Text);
        return false;
    }
    void Add(EPart Part, INT32 Step, float Steps, INT32 Pitch, float Strength, float Delay = 0) {
        Song.Parts[Part].Add({Start + Step, Steps, Pitch, Strength * Section->Dynamics, Delay});
    }
    INT32 SectionSteps() const { return static_cast<INT32>(Halves.count) * STEPS_PER_BAR / 2; }
    const SVoicing& ChordAt(INT32 Step) const { return Halves.Data[Step * 2 / STEPS_PER_BAR]; }

    bool ReadChord(const char* Name, INT32 Length, SVoicing& Voicing) const;
    bool ReadChords();
    bool ReadMelody(EPart Part, const char* Text);
    // Steps from Step on that the pattern holds: 1 and the "-" behind.
    static INT32 Held(const char* Pattern, INT32 Length, INT32 Step);
    bool ReadPattern(EPart Part, const char* Pattern);
    bool AddPatternNote(EPart Part, char Sign, INT32 Step, float Steps);
    void AddStrum(bool Down, INT32 Step, float Steps);
    void AddPads();
    bool ReadDrums(const SGroove& Groove, INT32 Bar);

    const SScore& Score;
    SSong& Song;
    const SSection* Section = nullptr;
    INT32 Start = 0;         // of the section, in steps
    GArray<SVoicing> Halves; // a chord for each half of a bar
};

bool CReader::ReadChord(const char* Name, INT32 Length, SVoicing& Voicing) const {
    for (UINT32 i = 0; i < Score.ChordCount; ++i) {
        const SChord& Chord = Score.Chords[i];
        if (std::strncmp(Chord.Name, Name, static_cast<size_t>(Length)) == 0 && !Chord.Name[Length]) {
            const char* Text = Chord.Bass;
            Voicing.Bass = ReadPitch(Text);
            Text = Chord.Voices;
            for (INT32& Voice : Voicing.Voices) {
                Voice = ReadPitch(Text);
                Text += *Text == ' ';
            }
            return Voicing.Bass >= 0 && Voicing.Voices[VOICES - 1] >= 0;
        }
    }
    return false;
}

bool CReader::ReadChords() {
    Halves.Clear();
    for (const char* Text = Section->Chords; *Text;) {
        SVoicing Voicing;
        const INT32 First = static_cast<INT32>(std::strcspn(Text, " +"));
        if (!ReadChord(Text, First, Voicing)) {
            return Fault("no such chord", Text);
        }
        Halves.Add(Voicing);
        Text += First;
        if (*Text == '+') {
            const INT32 Second = static_cast<INT32>(std::strcspn(++Text, " "));
            if (!ReadChord(Text, Second, Voicing)) {
                return Fault("no such chord", Text);
            }
            Text += Second;
        }
        Halves.Add(Voicing);
        Text += std::strspn(Text, " ");
    }
    return true;
}

bool CReader::ReadMelody(EPart Part, const char* Text) {
    INT32 Step = 0;
    while (*Text) {
        const char* Token = Text;
        const bool Rest = *Text == '-';
        const INT32 Pitch = Rest ? 0 : ReadPitch(Text);
        Text += Rest;
        if (Pitch < 0 || *Text++ != ':') {
            return Fault("no note", Token);
        }
        char* End;
        const INT32 Steps = static_cast<INT32>(std::strtol(Text, &End, 10));
        const bool Loud = *End == '!';
        Text = End + Loud;
        if (!Rest) {
            Add(Part, Step, static_cast<float>(Steps), Pitch, Loud ? ACCENT : NORMAL);
        }
        Step += Steps;
        Text += std::strspn(Text, " ");
        if ((*Text == '|') != (Step % STEPS_PER_BAR == 0)) {
            return Fault("the bar has not sixteen steps at", Token);
        }
        Text += std::strspn(Text, "| ");
    }
    return Step == SectionSteps() || Fault("not as many bars as chords", "melody");
}

INT32 CReader::Held(const char* Pattern, INT32 Length, INT32 Step) {
    INT32 Steps = 1;
    while (Step % Length + Steps < Length && Pattern[Step % Length + Steps] == '-') {
        ++Steps;
    }
    return Steps;
}

void CReader::AddStrum(bool Down, INT32 Step, float Steps) {
    constexpr float SPREAD = 0.12f; // steps between two strings
    for (INT32 i = 0; i < VOICES; ++i) {
        const float Order = static_cast<float>(Down ? i : VOICES - 1 - i);
        Add(PART_STRUM, Step, Steps, ChordAt(Step).Voices[i], Down ? NORMAL : GHOST, Order * SPREAD);
    }
}

bool CReader::AddPatternNote(EPart Part, char Sign, INT32 Step, float Steps) {
    const SVoicing& Chord = ChordAt(Step);
    const float Strength = Step % 4 == 0 ? 0.9f : 0.7f;
    if (Part == PART_STRUM && (Sign == 'd' || Sign == 'u')) {
        AddStrum(Sign == 'd', Step, Steps);
    } else if (Part == PART_BASS && std::strchr("158", Sign)) {
        Add(Part, Step, Steps, Chord.Bass + (Sign == '1' ? 0 : Sign == '5' ? 7 : 12), Strength);
    } else if ((Part == PART_ARP || Part == PART_PLUCK) && Sign >= '1' && Sign <= '8') {
        Add(Part, Step, Steps, Chord.Tone(Sign - '1'), Strength);
    } else {
        return false;
    }
    return true;
}

bool CReader::ReadPattern(EPart Part, const char* Pattern) {
    const INT32 Length = static_cast<INT32>(std::strlen(Pattern));
    if (Length == 0 || Length % STEPS_PER_BAR) {
        return Fault("no whole bars", Pattern);
    }
    for (INT32 Step = 0; Step < SectionSteps(); ++Step) {
        const char Sign = Pattern[Step % Length];
        const float Steps = static_cast<float>(Held(Pattern, Length, Step));
        if (Sign != '.' && Sign != '-' && !AddPatternNote(Part, Sign, Step, Steps)) {
            return Fault("no such sign", Pattern);
        }
    }
    return true;
}

void CReader::AddPads() {
    for (INT32 Step = 0; Step < SectionSteps(); Step += STEPS_PER_BAR / 2) {
        const bool Same = Step % STEPS_PER_BAR && ChordAt(Step).Bass == ChordAt(Step - 1).Bass &&
                          ChordAt(Step).Voices[1] == ChordAt(Step - 1).Voices[1];
        const bool Whole = Step % STEPS_PER_BAR == 0 && ChordAt(Step).Voices[1] == ChordAt(Step + 8).Voices[1];
        for (INT32 i = 0; i < VOICES && !Same; ++i) {
            Add(PART_PAD, Step, Whole ? STEPS_PER_BAR : STEPS_PER_BAR / 2, ChordAt(Step).Voices[i], NORMAL);
        }
    }
}

bool CReader::ReadDrums(const SGroove& Groove, INT32 Bar) {
    for (UINT32 i = 0; i < Groove.Count; ++i) {
        const SDrumLine& Line = Groove.Lines[i];
        const INT32 Length = static_cast<INT32>(std::strlen(Line.Steps));
        if (Length == 0 || Length % STEPS_PER_BAR) {
            return Fault("no whole bars", Line.Steps);
        }
        for (INT32 Step = 0; Step < STEPS_PER_BAR; ++Step) {
            const char Sign = Line.Steps[(Bar * STEPS_PER_BAR + Step) % Length];
            if (!std::strchr(".-Xxohml", Sign)) {
                return Fault("no such sign", Line.Steps);
            }
            if (Sign != '.' && Sign != '-') {
                const INT32 Pitch = Sign == 'h' ? 52 : Sign == 'm' ? 47 : 42;
                const float Strength = Sign == 'X' ? ACCENT : Sign == 'o' ? GHOST : NORMAL;
                const INT32 At = Bar * STEPS_PER_BAR + Step;
                Add(Line.Part, At, static_cast<float>(Held(Line.Steps, Length, At)), Pitch, Strength);
            }
        }
    }
    return true;
}

bool CReader::ReadSection(const SSection& NewSection) {
    Section = &NewSection;
    Start = Song.Steps;
    if (!ReadChords()) {
        return false;
    }
    for (INT32 Part = PART_LEAD; Part <= PART_RIFF; ++Part) {
        if (Section->Melodies[Part] && !ReadMelody(static_cast<EPart>(Part), Section->Melodies[Part])) {
            return false;
        }
    }
    const char* Patterns[] = {Section->Pluck, Section->Arp, Section->Strum, Section->Bass};
    const EPart Parts[] = {PART_PLUCK, PART_ARP, PART_STRUM, PART_BASS};
    for (INT32 i = 0; i < 4; ++i) {
        if (Patterns[i] && !ReadPattern(Parts[i], Patterns[i])) {
            return false;
        }
    }
    if (Section->Pad) {
        AddPads();
    }
    if (Section->Crash) {
        Add(PART_CRASH, 0, STEPS_PER_BAR, 0, NORMAL);
    }
    const INT32 Bars = SectionSteps() / STEPS_PER_BAR;
    for (INT32 Bar = 0; Bar < Bars; ++Bar) {
        const bool Half = Bar == 3 && Section->HalfFill;
        if (!ReadDrums(Bar == Bars - 1 ? *Section->Fill : Half ? *Section->HalfFill : *Section->Groove, Bar)) {
            return false;
        }
    }
    Song.Steps += SectionSteps();
    return true;
}

} // namespace

bool ReadScore(const SScore& Score, SSong& Song) {
    Song.StepSamples = Score.StepSamples;
    CReader Reader(Score, Song);
    for (UINT32 i = 0; i < Score.SectionCount; ++i) {
        if (!Reader.ReadSection(Score.Sections[i])) {
            return false;
        }
    }
    return true;
}
