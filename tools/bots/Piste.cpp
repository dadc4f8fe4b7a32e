#include "bots/Piste.h"

#include "world/GameLevel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

std::vector<Vec3> FlagPlaces() {
    std::vector<Vec3> Places;
    for (const SEntityDef& Def : GLevel->EntityDefs) {
        const auto* Mesh = Def.Properties.Find("MeshName");
        const auto* Position = Def.Properties.Find("Position");
        Vec3 p;
        if (Mesh && Position && std::strstr(Mesh->value.CStr(), "/Flag") &&
            std::sscanf(Position->value.CStr(), "%f;%f;%f", &p.x, &p.y, &p.z) == 3) {
            Places.push_back(p);
        }
    }
    std::sort(Places.begin(), Places.end(), [](const Vec3& a, const Vec3& b) { return a.y > b.y; });
    return Places;
}

} // namespace

CPiste::CPiste() {
    const std::vector<Vec3> Flags = FlagPlaces();
    for (std::size_t i = 0; i + 1 < Flags.size(); i += 2) {
        const Vec3& a = Flags[i];
        const Vec3& b = Flags[i + 1];
        Gates.push_back({a.y, (a.x + b.x) / 2, std::fabs(a.x - b.x) / 2});
    }
}

float CPiste::Stray(const Vec3& Place) const {
    if (Gates.empty()) {
        return 0;
    }
    const auto Below = std::find_if(Gates.begin(), Gates.end(), [&](const SGate& Gate) { return Gate.y <= Place.y; });
    const SGate& Next = Below == Gates.end() ? Gates.back() : *Below;
    const SGate& Last = Below == Gates.begin() ? Next : Below[-1];
    const float Part = Last.y > Next.y ? (Last.y - Place.y) / (Last.y - Next.y) : 0;
    const float Middle = Last.Middle + (Next.Middle - Last.Middle) * Part;
    const float HalfWidth = Last.HalfWidth + (Next.HalfWidth - Last.HalfWidth) * Part;
    return std::max(std::fabs(Place.x - Middle) - HalfWidth, 0.0f);
}
