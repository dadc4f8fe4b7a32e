// Scenery, bark and the rider.
#ifdef SKINNING
uniform mat4 WorldMatrix[64];
attribute vec4 Indices; // bones
#else
uniform mat4 WorldMatrix;
#endif
uniform mat4 SMMatrix;
uniform vec3 CameraPos;

varying vec3 WorldPos;
varying vec3 ShadowPos; // sun: in the shadow map, 0 to 1; spot: its x, y and w in the map's clip space
varying vec3 Normal;
varying vec2 TexCoord;
varying float Shown; // 1 near, 0 where meshes end
#ifdef L_SPOT
uniform sampler2D ProjMap;
varying float Unveiled; // 1 if the light throws no picture, else 0
#endif

void main()
{
#ifdef SKINNING
	// Weights are in the third texture coordinate. Poses neither scale nor shear, so normals turn as positions do.
	mat4 Bone = WorldMatrix[int(Indices.x)] * gl_MultiTexCoord2.x
		+ WorldMatrix[int(Indices.y)] * gl_MultiTexCoord2.y
		+ WorldMatrix[int(Indices.z)] * gl_MultiTexCoord2.z
		+ WorldMatrix[int(Indices.w)] * gl_MultiTexCoord2.w;
	Shown = 1.0;
#else
	mat4 Bone = WorldMatrix;
	// A thing dissolves as a whole, before it is left out of the picture at 500.
	Shown = 1.0 - smoothstep(400.0, 490.0, distance(Bone[3].xyz, CameraPos));
#endif
	vec4 World = Bone * gl_Vertex;
	vec4 Shadow = SMMatrix * World;
	WorldPos = World.xyz;
#ifdef L_AMBDIR
	ShadowPos = Shadow.xyz * 0.5 + 0.5;
#else
	ShadowPos = Shadow.xyw;
	// The mean of the picture; where there is no picture it is black.
	Unveiled = 1.0 - step(0.001, dot(texture2DLod(ProjMap, vec2(0.5), 16.0).xyz, vec3(1.0)));
#endif
	Normal = (Bone * vec4(gl_Normal, 0.0)).xyz;
	TexCoord = gl_MultiTexCoord0.xy;
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
