// What is selected in the editor: by a ray, by a part of the view, one by one.
#include "world/GameLevel.h"

#include <algorithm>

SSpatialClient* CLevel::NearestPicked() const {
    const GMap<float, SSpatialClient*>::Iterator Nearest(PickHits.Hits);
    return Nearest.Valid() ? Nearest.Value() : nullptr;
}

void CLevel::SelectPicked(INT32 Mode) {
    if (Mode == 0) {
        Selection.Resize(0);
    }
    if (SSpatialClient* Nearest = NearestPicked()) {
        SelectClient(Mode, Nearest);
    }
}

void CLevel::SelectInFrustum(INT32 Mode, const Frustum& Volume) {
    if (Mode == 0) {
        Selection.Resize(0);
        Mode = 1;
    }
    GArray<SSpatialClient*> Found;
    ++GSpatialStamp;
    QueryClients(Grid->Root, &Found, Volume.Planes, 6);
    for (SSpatialClient* Client : Found) {
        SelectClient(Mode, Client);
    }
}

void CLevel::SelectClient(INT32 Mode, SSpatialClient* Client) {
    SSpatialClient** Place = std::find(Selection.begin(), Selection.end(), Client);
    const bool IsSelected = Place != Selection.end();
    if (Mode < 0 && IsSelected) {
        const UINT32 Index = static_cast<UINT32>(Place - Selection.begin());
        Selection.Remove(Index, Index);
    }
    if (Mode < 0 || (Mode > 0 && IsSelected)) {
        return;
    }
    if (Mode == 0) {
        Selection.Resize(0);
    }
    Selection.Add(Client);
}

// Menus that work on the selection hold its clients too, so they go with the first that vanishes.
void CLevel::DeselectGone(SSpatialClient* Client) {
    if (std::find(Selection.begin(), Selection.end(), Client) != Selection.end()) {
        SelectClient(-1, Client);
        PopMenusToBase();
    }
}
