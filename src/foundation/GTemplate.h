// The containers of the whole system, used instead of the standard ones.
//
//   GArray<T>         growable array            foundation/GArray.h
//   GString           text with inline buffer   foundation/GString.h
//   GList<T>          doubly linked list        foundation/GList.h
//   GStack<T>         stack on the list         foundation/GList.h
//   GMap<K, V>        ordered map               foundation/GMap.h
//   GCombSort         sort in place             foundation/GCombSort.h
//
// All own their elements, copy deeply and take their own elements as arguments. Bounds are checked in every build; see
// foundation/GCheck.h for what a failed check does. None is safe for use from two threads.
#pragma once

#include "foundation/GArray.h"
#include "foundation/GCheck.h"
#include "foundation/GCombSort.h"
#include "foundation/GList.h"
#include "foundation/GMap.h"
#include "foundation/GString.h"
