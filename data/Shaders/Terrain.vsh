// The slope. Vertices are in unit space; the world matrix scales them by half sizes and height.
uniform mat4 WorldMatrix;
uniform mat4 SMMatrix;
uniform sampler2D NormalMap; // normals in unit space
uniform vec3 Extents;
uniform vec3 CameraPos;
uniform vec2 FogData;        // distance at which the fog closes, exponent
uniform vec4 LightDir;       // sun: w is the amount of cloud
uniform vec3 FogColor;
uniform vec3 AmbientColor;
uniform float DetailSize;    // world units that the snow's ripples span

varying vec3 WorldPos;
varying vec3 ShadowPos; // sun: in the shadow map, 0 to 1; spot: its x, y and w in the map's clip space
varying vec3 GroundNormal;
varying float Carved;   // 0 to 1: how far the wind has worked on the snow
varying float SunShare; // of the sun's light, what the clouds let through
varying float Far;      // part of the light that is fog's
varying vec3 SkyColor;  // light that the whole sky sends
varying float Level;    // of the snow's picture, where it is seen as ripples
#ifdef L_SPOT
uniform sampler2D ProjMap;
varying float Unveiled; // 1 if the light throws no picture, else 0
#endif

// Heights come in whole levels. Averaged over a few samples, the normals lose the stairs of gentle ground. A vertex is the
// cheap place for that: there are far fewer of them than pixels.
vec3 SmoothNormal()
{
	const float Step = 0.8 / 256.0;
	vec2 Place = gl_MultiTexCoord0.xy;
	vec3 Packed = texture2DLod(NormalMap, Place + vec2(Step, Step), 1.0).xyz
		+ texture2DLod(NormalMap, Place + vec2(-Step, Step), 1.0).xyz
		+ texture2DLod(NormalMap, Place + vec2(Step, -Step), 1.0).xyz
		+ texture2DLod(NormalMap, Place + vec2(-Step, -Step), 1.0).xyz;
	// The bytes were cut, not rounded: half a step is missing from each of the four.
	return normalize((Packed - 1.992) / Extents);
}

// Clouds dim the sun evenly, and in patches some hundreds of units wide. Meshes take the same patches.
float CloudShare(vec2 Place, float Amount)
{
	float Patch = sin(Place.x * 0.0061 + 2.1 * sin(Place.y * 0.0023)) * sin(Place.y * 0.0047 + 1.9 * sin(Place.x * 0.0031));
	return 1.0 - Amount * (0.5 + 0.9 * smoothstep(-0.1, 0.7, Patch));
}

// A pixel seen at a slant is long: half way between its length and its width neither blurs nor flickers much.
float DetailLevel(vec3 ToEye, float Distance, vec3 Ground)
{
	const float PIXEL = 0.0026; // world units across a pixel at a distance of one
	float Texels = PIXEL * 1024.0 / (DetailSize * 2.4);
	return log2(Distance * Texels * inversesqrt(max(dot(Ground, ToEye) / Distance, 0.05))) + 0.5;
}

void main()
{
	vec4 World = WorldMatrix * gl_Vertex;
	vec4 Shadow = SMMatrix * World;
	Shadow.x = -Shadow.x; // the map is drawn mirrored

	WorldPos = World.xyz;
#ifdef L_AMBDIR
	// The sun's map is drawn in whole texels of the world, else the edges of shadows would crawl while the eye moves.
	vec2 Beside = fract(SMMatrix[3].xy * 1024.0) / 1024.0;
	ShadowPos = vec3(Shadow.x + Beside.x, Shadow.y - Beside.y, Shadow.z) * 0.5 + 0.5;
	SunShare = CloudShare(World.xy, LightDir.w);
#else
	ShadowPos = Shadow.xyw;
	SunShare = 0.0;
	// The mean of the picture; where there is no picture it is black.
	Unveiled = 1.0 - step(0.001, dot(texture2DLod(ProjMap, vec2(0.5), 16.0).xyz, vec3(1.0)));
#endif
	GroundNormal = SmoothNormal();
	// The wind has carved some places and left others smooth, over hundreds of units.
	Carved = 0.5 + 0.5 * sin(World.x * 0.013 + 1.7 * sin(World.y * 0.0071)) * sin(World.y * 0.0093 + 1.3 * sin(World.x * 0.0083));
	vec3 ToEye = CameraPos - World.xyz;
	float Distance = length(ToEye);
	Far = pow(min(Distance / FogData.x, 1.0), FogData.y);
	Level = DetailLevel(ToEye, Distance, GroundNormal);
	// The sky lights what the sun does not reach, and the air shows how bright it is: 1 on a clear morning. The root,
	// since the eye gets used to the dark.
	SkyColor = AmbientColor * vec3(3.7, 3.2, 3.3) * sqrt(FogColor * 0.63 + dot(FogColor, vec3(0.21)));
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
