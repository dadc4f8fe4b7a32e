// An element type that counts its constructions and destructions, so that a test can say that a container destroys what
// it made, once.
#pragma once

struct SCounted {
    static inline int Alive = 0;

    SCounted() { ++Alive; }
    SCounted(int Number) : Value(Number) { ++Alive; }
    SCounted(const SCounted& Other) : Value(Other.Value), Self(this) {
        Other.CheckAlive();
        ++Alive;
    }
    ~SCounted() {
        CheckAlive();
        Self = nullptr;
        --Alive;
    }
    SCounted& operator=(const SCounted& Other) {
        CheckAlive();
        Other.CheckAlive();
        Value = Other.Value;
        return *this;
    }
    bool operator==(const SCounted& Other) const { return Value == Other.Value; }
    bool operator>(const SCounted& Other) const { return Value > Other.Value; }

    // An object that was moved as bytes, or used before its construction or after its end, doesn't know its own place.
    void CheckAlive() const {
        if (Self != this) {
            ++Misused;
        }
    }

    static inline int Misused = 0;
    int Value = 0;
    const SCounted* Self = this;
};
