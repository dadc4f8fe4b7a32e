// CLevel: the running level. There is one at a time, reached through GLevel; the game replaces it on every change.
//
// Life: construct (makes the render targets, so a GL context and a physics world must exist), LoadSourceLevel once,
// then Update per fixed step and Render per picture, then delete. Build brings the level up in a fixed order (grid,
// sky, terrain, entities in file order), so an entity's constructor finds ground to stand on and a grid to enter; the
// destructor takes the entities down first.
// Ownership: the level owns its entities, terrain, grid, menus and targets. Members are public for the code of world,
// game and editor; the drawing operations are defined in scene/level/, those of the editor in editor/.
// Units: world units, radians, seconds. Z is up unless the gravity parameters tilt it.
// Cost: loading decodes pictures and builds buffers; Update is one physics step and one call per entity; the grid's
// cells cost memory only where a client touches them.
// Bad input: a missing file, a wrong magic or an unknown definition word is fatal; an entity of an unknown class and a
// malformed number are reported on standard output, and the level goes on.
#pragma once

#include "graphics/RenderTarget.h"
#include "scene/RenderData.h"
#include "scene/Sky.h"
#include "scene/SpatialGrid.h"
#include "world/Entity.h"
#include "world/LevelParams.h"

struct SLightClient;
struct SMenu;
struct STerrain;
class btRigidBody;

class CLevel {
public:
    CLevel();
    ~CLevel();
    CLevel(const CLevel&) = delete;
    CLevel& operator=(const CLevel&) = delete;

    // Reads the file and builds the level; called once on a new object. Returns 1; failures are fatal.
    UINT32 LoadSourceLevel(const char* Path);

    // One fixed step: the editor's while EditMode is set, physics, entities, deferred deletes.
    void Update(float Delta);

    // Writes the level as it stands to Data/Levels/_TmpSlopeRush.wlm. 0 if the file can't be opened, else 1.
    UINT32 SaveTemporaryLevel();

    // Enters a client with its present bounds into the grid and the level's list; the entity keeps owning it and takes
    // it out again with RemoveSpatialClient before it dies.
    void AddSpatialClient(IRenderable* Client);
    void RemoveSpatialClient(IRenderable* Client);

    // Takes over the client's present bounds; costs nothing if they are those of the last time.
    void MoveSpatialClient(IRenderable* Client);

    // Enters a spot light with the bounds of its cone. Its maker keeps owning it, moves it as SLightClient says, and
    // takes it out again before it dies.
    void AddLight(SLightClient* Light);
    void RemoveLight(SLightClient* Light);

    // Appends a new entity to both lists; the level owns it from then on.
    void AddEntity(CEntity* Entity);

    // Takes the entity out at the end of the present update; unknown entities are ignored.
    void RemoveEntity(CEntity* Entity);

    // Fills PickHits with what lies along the ray, nearest first. 0 if the ray starts outside of the grid, else 1.
    UINT32 TraceClients(const Ray& PickRay);

    // Drawing: scene/level/.
    void Render(float BlendDelta);
    void RenderScene(float BlendDelta, bool ShadowPass);
    void RenderSunShadow(float BlendDelta);
    void RenderTerrainShadow(bool OrthoPlanes, const Vec3& LodFrom);

    // Fills a frame list with the sorted records of all meshes within GCamera's planes, which are those of an
    // orthographic set-up if OrthoPlanes. ShadowFlags is for the sun's shadow map: what can't shade anything in the
    // camera's view is left out. Allocates nothing once the lists have grown.
    void BuildDrawList(bool OrthoPlanes, float BlendDelta, bool LightList, bool ShadowFlags);

    // Draws a frame list: in an additive light pass, as depth in a shadow pass, or else under the sun.
    void DrawList(bool Light, bool Shadow, bool LightList);

    void DrawPhysicsLines();
    void PostProcess();
    void SetSunLight();
    void SetSunCamera() const;
    void FindCasterPlanes();

    // The spot lights in view, their shadow maps, and their passes over the picture in SceneRT.
    void CollectLights();
    void RenderLightShadows(float BlendDelta);
    void RenderLightPasses(float BlendDelta);

    void DrawSun() const;
    Quat GravityRotation() const;
    Vec3 SunDirection() const; // unit vector towards the sun
    Vec3 UpDirection() const;  // unit vector against gravity

    // The editor: editor/.

    // Turns EditMode on or off. On: the free camera stands where GCamera does and looks the same way.
    void ToggleEditor();

    // Takes over a menu made with new; it is the top one from then on.
    void PushMenu(SMenu* Menu);
    void PopMenusToBase();

    // The editor's part of a fixed step: rows and tools into OverlayRT, keys; then physics; then the free camera.
    void UpdateEditor(float Delta);
    void MenuStep(float Delta);
    void UpdateEditorCamera();

    // The editor's part of a picture: GCamera before anything is drawn, and what lies over the finished scene.
    void SetEditorCamera(float BlendDelta) const;
    void DrawEditorOverlay();
    void DrawMenu();

    // One row at the right edge of the screen, for SMenu::Update: a value to drag, a value to flip (0 or 1). Id is the
    // row's own in GButtons.
    void FloatRow(UINT32 Id, const char* Label, float* Value, float Min, float Max);
    void CheckRow(UINT32 Id, const char* Label, UINT32* Value);

    // 0 while the mouse stands on one of the last Count rows drawn, else 1.
    UINT32 MouseOffRows(UINT32 Count) const;

    // The rows of the brush, five of them; the result is that of MouseOffRows for them.
    UINT32 BrushRows();

    // Fills PickHits; the result is that of TraceClients.
    UINT32 PickScene(const Ray& PickRay) { return TraceClients(PickRay); }

    // Mode 0 replaces the selection, 1 adds to it, -1 takes out of it.
    void SelectPicked(INT32 Mode); // the nearest of PickHits, if there is one
    void SelectInFrustum(INT32 Mode, const Frustum& Volume);
    void SelectClient(INT32 Mode, SSpatialClient* Client);

    // The nearest of PickHits, or null.
    SSpatialClient* NearestPicked() const;

    INT32 EditMode = 0; // the editor runs while it is not zero
    SLevelParams Params;
    GArray<SEntityDef> EntityDefs;
    SSky Sky;
    STerrain* Terrain = nullptr;
    GArray<CEntity*> Entities;       // what the present update walks
    GArray<CEntity*> ActiveEntities; // becomes Entities when the update ends
    GArray<CEntity*> DeadEntities;   // deleted when the update ends
    SSpatialGrid* Grid = nullptr;
    GList<SSpatialClient*> SpatialClients;
    GArray<SLightClient*> Lights; // all of them, in the order in which they came
    SRayHits PickHits;

    // Frame lists. Emptied by each BuildDrawList, which keeps their storage; entries point into the records of one
    // list.
    GArray<IRenderable*> VisibleClients; // of the last plane query
    GArray<SDrawEntry> SceneEntries;     // for the camera and the sun's shadow
    GArray<SRenderData> SceneRecords;
    GArray<SDrawEntry> LightEntries; // for the passes of one light
    GArray<SRenderData> LightRecords;
    GArray<SLightClient*> VisibleLights; // of this picture
    GArray<Plane> CasterPlanes;          // of the camera's view: what lies beyond one casts no shadow into it

    // What the editor keeps from menu to menu.
    GList<SMenu*> Menus; // a stack whose top is the last; never empty
    Vec3 EditorPos = {0, 0, 200};
    Vec3 EditorPrevPos = {0, 0, 200};  // a step ago
    float EditorYaw = 0;               // radians
    float EditorPitch = 1.5707964f;    // radians from the upright; pi / 2 looks level
    UINT32 MenuRow = 0;                // rows drawn so far in this step
    float BrushSize = 50;              // radius, world units
    float BrushCurve = 1;              // exponent of the fall-off
    float BrushStrength = 20;          // world units a second; negative digs
    float BrushDownOffset = 5;         // how deep placed meshes stand in the ground, world units
    UINT32 BrushUse3D = 1;             // the brush's reach counts heights too
    GString MeshFile;                  // what the mesh brush places; relative to the data folder
    GArray<SSpatialClient*> Selection; // in the order of selecting; a client that leaves the level leaves it too

    GameRT SceneRT;   // the picture until post-processing
    GameRT OverlayRT; // the 2D layer of game and editor, transparent where nothing is drawn
    GameRT ShadowRT;  // the sun's shadow map
    UINT32 PostProgram = 0;
    UINT32 ShadowProgram = 0;
    UINT32 SunTexture = 0;
    UINT32 FlareTexture = 0;

private:
    void TryGeoMeshes() const;
    void Build(const char* Path);
    void CollectEntityDefs();
    void DestroyEntities();
    void InitMenus();
    void FreeMenus();
    void PopMenu();
    void DeselectGone(SSpatialClient* Client);
    void EditorAxes(Vec3& Forward, Vec3& Side) const;
    void DrawRowLabel(const char* Label);

    UINT32 OtherWarpMouse = 0; // GWarpMouse as it was before the editor, while that runs
    void InitDrawing();
    void FreeSun();
    void FreeTargets();
};

extern CLevel* GLevel;

// The body of the editor's free camera; it lives as long as a level does.
extern btRigidBody* GEditorBody;
