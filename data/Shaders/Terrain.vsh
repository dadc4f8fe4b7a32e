// The slope. Vertices are in unit space; the world matrix scales them by half sizes and height.
uniform mat4 WorldMatrix;
uniform mat4 SMMatrix;
uniform sampler2D NormalMap; // normals in unit space
uniform vec3 Extents;

varying vec3 WorldPos;
varying vec3 ShadowPos; // sun: in the shadow map, 0 to 1; spot: its x, y and w in the map's clip space
varying vec3 GroundNormal;
varying float Carved; // 0 to 1: how far the wind has worked on the snow
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

void main()
{
	vec4 World = WorldMatrix * gl_Vertex;
	vec4 Shadow = SMMatrix * World;

	WorldPos = World.xyz;
#ifdef L_AMBDIR
	ShadowPos = Shadow.xyz * 0.5 + 0.5;
#else
	ShadowPos = Shadow.xyw;
	// The mean of the picture; where there is no picture it is black.
	Unveiled = 1.0 - step(0.001, dot(texture2DLod(ProjMap, vec2(0.5), 16.0).xyz, vec3(1.0)));
#endif
	GroundNormal = SmoothNormal();
	// The wind has carved some places and left others smooth, over hundreds of units.
	Carved = 0.5 + 0.5 * sin(World.x * 0.013 + 1.7 * sin(World.y * 0.0071)) * sin(World.y * 0.0093 + 1.3 * sin(World.x * 0.0083));
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
