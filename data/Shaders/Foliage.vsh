// Boughs of a tree that stands upright on its own z axis.
uniform mat4 WorldMatrix;
uniform mat4 SMMatrix;
uniform vec3 CameraPos;

varying vec3 WorldPos;
varying vec3 ShadowPos; // sun: in the shadow map, 0 to 1; spot: its x, y and w in the map's clip space
varying vec3 Normal;
varying vec2 TexCoord;
varying float Shown; // 1 near, 0 where meshes end
varying float Open;  // part of the sky that a place in the crown sees
#ifdef L_SPOT
uniform sampler2D ProjMap;
varying float Unveiled; // 1 if the light throws no picture, else 0
#endif

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
	// A card's own normal shows that it is a card; the crown's is that of a cone round the trunk.
	float Out = length(gl_Vertex.xy);
	vec3 Crown = vec3(gl_Vertex.xy / max(Out, 0.01), 0.75);
	Normal = (WorldMatrix * vec4(normalize(Crown) + 0.25 * gl_Normal, 0.0)).xyz;
	// A card's v is 1 at the trunk, where the boughs above take the sky away, and 0 at its tip.
	Open = 1.0 - 0.42 * gl_MultiTexCoord0.y;
	TexCoord = gl_MultiTexCoord0.xy;
	Shown = 1.0 - smoothstep(400.0, 490.0, distance(WorldMatrix[3].xyz, CameraPos));
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
