// Checks of promises between pieces of code, active in every build.
//
// A failed check reports its text, a source and a line on standard error and aborts (PlatAssertFailed); nothing after
// it runs. The text is part of a container's contract, so GCHECK takes it apart from the expression.
//   GCHECK(expression, text)             checks of the containers, source "GTemplate"
//   GCHECK_IN(source, expression, text)  the same under another source's name
//   G_WASSERT(expression)                text and place are those of the expression itself
// For failures that a player may see as a box, use G_ASSERT from foundation/Diagnostics.h instead.
// Cost: one comparison and a branch that is never taken.
#pragma once

#include "platform/Platform.h"

#define GCHECK_IN(Source, Expression, Text)                                                                            \
    (__builtin_expect(!(Expression), 0) ? PlatAssertFailed(Text, Source, __LINE__) : static_cast<void>(0))

#define GCHECK(Expression, Text) GCHECK_IN("GTemplate", Expression, Text)

#define G_WASSERT(Expression) GCHECK_IN(__FILE__, Expression, #Expression)
