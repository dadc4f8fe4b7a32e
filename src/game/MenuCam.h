// The camera of the menu level: it stands still and looks at a point.
//
// Its registered name is "MenuCam". Properties: "_POS" for the eye and "Target" (x;y;z) for the point looked at.
#pragma once

#include "world/Entity.h"

class CMenuCam : public CEntity {
public:
    explicit CMenuCam(const GProperties& Props);

    void Update(float Delta) override;
    void SaveProperties(GProperties& Props) override;

    Vec3 Target;
};
