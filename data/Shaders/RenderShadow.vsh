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

#ifndef SKINNING
// What Mesh and Foliage let grow out of the ground in the distance casts a shadow of the same size. The sun's map is
// parallel, and the eye of the picture stands in its middle at a third of its depth. A spot light's map has no eye.
float Grown()
{
	vec3 FromEye = (ProjectionMatrix * (ViewMatrix * WorldMatrix[3])).xyz - vec3(0.0, 0.0, 1.0 / 3.0);
	FromEye /= vec3(ProjectionMatrix[0].x, ProjectionMatrix[1].y, ProjectionMatrix[2].z);
	return ProjectionMatrix[3].w > 0.5 ? 1.0 - smoothstep(360.0, 495.0, length(FromEye)) : 1.0;
}
#endif

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
	// The ground is the one thing that is scaled by hundreds. It has no holes; what is bound for it is no picture of it.
	Holes = 100.0 - length(WorldMatrix[0].xyz);
	float Sink = Holes > 0.0 ? 0.0 : GROUND_SINK;
	vec4 World = WorldMatrix * vec4(gl_Vertex.xyz * (Holes > 0.0 ? Grown() : 1.0), 1.0);
#endif
	TexCoord = gl_MultiTexCoord0.xy;
	vec4 Seen = ViewMatrix * World;
	Seen.z -= Sink;
	gl_Position = ProjectionMatrix * Seen;
	// The sun's map follows the eye. Moved back by what its texels are off the world's, it shows a thing that stands still
	// in the same texels wherever the eye is. Its readers do the same.
	if (ProjectionMatrix[3].w > 0.5)
		gl_Position.xy -= fract((ProjectionMatrix * ViewMatrix[3]).xy * 1024.0) / 1024.0;
	gl_Position.x = -gl_Position.x;
}
