// The slope. Vertices are in unit space; the world matrix scales them by half sizes and height.
uniform mat4 WorldMatrix;
uniform mat4 SMMatrix;

varying vec3 WorldPos;
varying vec3 ShadowPos; // in the shadow map, 0 to 1
varying vec2 TerrainCoord;

void main()
{
	vec4 World = WorldMatrix * gl_Vertex;
	vec4 Shadow = SMMatrix * World;

	WorldPos = World.xyz;
#ifdef L_AMBDIR
	ShadowPos = Shadow.xyz * 0.5 + 0.5;
#else
	ShadowPos = Shadow.xyw;
#endif
	TerrainCoord = gl_MultiTexCoord0.xy;
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
