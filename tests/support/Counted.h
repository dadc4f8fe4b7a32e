// An element type that counts its constructions and destructions, and the fixture that says that a container destroys
// what it made, once.
#pragma once

#include <gtest/gtest.h>

struct SCounted {
    static inline int Alive = 0;
    static inline int Misused = 0;

    SCounted(int Number = 0) : Value(Number) { ++Alive; }
    SCounted(const SCounted& Other) : Value(Other.Value) {
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
    void CheckAlive() const { Misused += Self != this; }

    int Value = 0;
    const SCounted* Self = this;
};

class CountedTest : public testing::Test {
protected:
    void SetUp() override { SCounted::Alive = SCounted::Misused = 0; }
    void TearDown() override {
        EXPECT_EQ(SCounted::Alive, 0);
        EXPECT_EQ(SCounted::Misused, 0);
    }
};
