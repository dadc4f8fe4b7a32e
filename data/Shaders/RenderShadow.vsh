// Depth as a light sees it.
#ifdef SKINNING
uniform mat4 WorldMatrix[64];
attribute vec4 Indices; // bones
#else
uniform mat4 WorldMatrix;
#endif

varying vec2 TexCoord;
varying float Holes; // above 0 where the texture's alpha counts

void main()
{
#ifdef SKINNING
	// Weights are in the third texture coordinate.
	vec4 World = (WorldMatrix[int(Indices.x)] * gl_Vertex) * gl_MultiTexCoord2.x
		+ (WorldMatrix[int(Indices.y)] * gl_Vertex) * gl_MultiTexCoord2.y
		+ (WorldMatrix[int(Indices.z)] * gl_Vertex) * gl_MultiTexCoord2.z
		+ (WorldMatrix[int(Indices.w)] * gl_Vertex) * gl_MultiTexCoord2.w;
	Holes = 1.0;
#else
	vec4 World = WorldMatrix * gl_Vertex;
	// The ground is the one thing that is scaled by hundreds. It has no holes; what is bound for it is no picture of it.
	Holes = 100.0 - length(WorldMatrix[0].xyz);
#endif
	TexCoord = gl_MultiTexCoord0.xy;
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
