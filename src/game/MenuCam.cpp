#include "game/MenuCam.h"

#include "foundation/Scan.h"
#include "game/GameState.h"
#include "world/GameLevel.h"

CMenuCam::CMenuCam(const GProperties& Props) : CEntity(Props) {
    if (const auto* Found = Props.Find("Target")) {
        INT32 Pos = 0;
        Target = F_ReadVec3(Pos, Found->value);
    }
}

void CMenuCam::Update(float) {
    GCamera.Eye = Position;
    GCamera.Target = Target;
    GCamera.Up = GLevel->UpDirection();
    M_CameraGet(GCameraPrev);
    M_CameraGet(GCameraNow);
}

void CMenuCam::SaveProperties(GProperties& Props) {
    constexpr UINT32 VEC3_LENGTH = 127;
    CEntity::SaveProperties(Props);
    Props["Target"].Format(VEC3_LENGTH, "%f;%f;%f", Target.x, Target.y, Target.z);
}
