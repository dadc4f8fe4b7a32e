// The two-dimensional layer: pictures and letters.
varying vec2 TexCoord;
varying vec4 Color;

void main()
{
	TexCoord = gl_MultiTexCoord0.xy;
	Color = gl_Color;
	gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex);
}
