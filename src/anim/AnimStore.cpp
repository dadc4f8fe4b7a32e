#include "anim/Animation.h"

GMap<GString, SAnimEntry*> GAnimsByName;
GMap<SAnimation*, SAnimEntry*> GAnimsByData;
