// Depth as a light sees it.
#ifdef SKINNING
uniform mat4 WorldMatrix[64];
attribute vec4 Indices; // bones
#else
uniform mat4 WorldMatrix;
#endif

varying vec2 TexCoord;

void main()
{
#ifdef SKINNING
	// Weights are in the third texture coordinate.
	vec4 World = (WorldMatrix[int(Indices.x)] * gl_Vertex) * gl_MultiTexCoord2.x
		+ (WorldMatrix[int(Indices.y)] * gl_Vertex) * gl_MultiTexCoord2.y
		+ (WorldMatrix[int(Indices.z)] * gl_Vertex) * gl_MultiTexCoord2.z
		+ (WorldMatrix[int(Indices.w)] * gl_Vertex) * gl_MultiTexCoord2.w;
#else
	vec4 World = WorldMatrix * gl_Vertex;
#endif
	TexCoord = gl_MultiTexCoord0.xy;
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
