// Depth as a light sees it, drawn mirrored from left to right: so culling keeps the faces that look away from the light.
// They throw the same shadows, and what is lit is not in the map: it can't shade itself, and most ground costs nothing.
#ifdef SKINNING
uniform mat4 WorldMatrix[64];
attribute vec4 Indices; // bones
#else
uniform mat4 WorldMatrix;
#endif

varying vec2 TexCoord;
varying float Holes; // above 0 where the texture's alpha counts

// World units by which ground lies deeper than it does, so that a ridge does not reach over to its lit side.
const float GROUND_SINK = 5.0;

void main()
{
#ifdef SKINNING
	// Weights are in the third texture coordinate.
	vec4 World = (WorldMatrix[int(Indices.x)] * gl_Vertex) * gl_MultiTexCoord2.x
		+ (WorldMatrix[int(Indices.y)] * gl_Vertex) * gl_MultiTexCoord2.y
		+ (WorldMatrix[int(Indices.z)] * gl_Vertex) * gl_MultiTexCoord2.z
		+ (WorldMatrix[int(Indices.w)] * gl_Vertex) * gl_MultiTexCoord2.w;
	Holes = 1.0;
	float Sink = 0.0;
#else
	vec4 World = WorldMatrix * gl_Vertex;
	// The ground is the one thing that is scaled by hundreds. It has no holes; what is bound for it is no picture of it.
	Holes = 100.0 - length(WorldMatrix[0].xyz);
	float Sink = Holes > 0.0 ? 0.0 : GROUND_SINK;
#endif
	TexCoord = gl_MultiTexCoord0.xy;
	vec4 Seen = ViewMatrix * World;
	Seen.z -= Sink;
	gl_Position = ProjectionMatrix * Seen;
	gl_Position.x = -gl_Position.x;
}
