// Scenery, bark and the rider.
#ifdef SKINNING
uniform mat4 WorldMatrix[64];
attribute vec4 Indices; // bones
#else
uniform mat4 WorldMatrix;
#endif
uniform mat4 SMMatrix;
uniform vec3 CameraPos;
uniform vec2 FogData;  // distance at which the fog closes, exponent
uniform vec4 LightDir; // sun: w is the amount of cloud

varying vec3 WorldPos;
varying vec3 ShadowPos; // sun: in the shadow map, 0 to 1; spot: its x, y and w in the map's clip space
varying vec3 Normal;
varying vec2 TexCoord;
varying float SunShare; // of the sun's light, what the clouds let through
varying float Far;      // part of the light that is fog's
#ifdef L_SPOT
uniform sampler2D ProjMap;
varying float Unveiled; // 1 if the light throws no picture, else 0
#endif

// Clouds dim the sun evenly, and in patches some hundreds of units wide, the same as on the ground.
float CloudShare(vec2 Place, float Amount)
{
	float Patch = sin(Place.x * 0.0061 + 2.1 * sin(Place.y * 0.0023)) * sin(Place.y * 0.0047 + 1.9 * sin(Place.x * 0.0031));
	return 1.0 - Amount * (0.5 + 0.9 * smoothstep(-0.1, 0.7, Patch));
}

void main()
{
#ifdef SKINNING
	// Weights are in the third texture coordinate. Poses neither scale nor shear, so normals turn as positions do.
	mat4 Bone = WorldMatrix[int(Indices.x)] * gl_MultiTexCoord2.x
		+ WorldMatrix[int(Indices.y)] * gl_MultiTexCoord2.y
		+ WorldMatrix[int(Indices.z)] * gl_MultiTexCoord2.z
		+ WorldMatrix[int(Indices.w)] * gl_MultiTexCoord2.w;
	vec4 World = Bone * gl_Vertex;
#else
	mat4 Bone = WorldMatrix;
	// Meshes are left out of the picture at 500: before that a thing grows out of the ground as a whole.
	float Grown = 1.0 - smoothstep(360.0, 495.0, distance(Bone[3].xyz, CameraPos));
	vec4 World = Bone * vec4(gl_Vertex.xyz * Grown, 1.0);
#endif
	Far = pow(min(distance(World.xyz, CameraPos) / FogData.x, 1.0), FogData.y);
	vec4 Shadow = SMMatrix * World;
	Shadow.x = -Shadow.x; // the map is drawn mirrored
	WorldPos = World.xyz;
#ifdef L_AMBDIR
	// In whole texels of the world, as the map is drawn.
	vec2 Beside = fract(SMMatrix[3].xy * 1024.0) / 1024.0;
	ShadowPos = vec3(Shadow.x + Beside.x, Shadow.y - Beside.y, Shadow.z) * 0.5 + 0.5;
	SunShare = CloudShare(World.xy, LightDir.w);
#else
	ShadowPos = Shadow.xyw;
	SunShare = 0.0;
	// The mean of the picture; where there is no picture it is black.
	Unveiled = 1.0 - step(0.001, dot(texture2DLod(ProjMap, vec2(0.5), 16.0).xyz, vec3(1.0)));
#endif
	Normal = (Bone * vec4(gl_Normal, 0.0)).xyz;
	TexCoord = gl_MultiTexCoord0.xy;
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
