// A quad in clip space.
varying vec2 TexCoord;

void main()
{
	TexCoord = gl_MultiTexCoord0.xy;
	gl_Position = vec4(gl_Vertex.xyz, 1.0);
}
