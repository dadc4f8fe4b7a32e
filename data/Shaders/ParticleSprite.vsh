// A sprite in the space of a world matrix, such as the maker's mark before the title.
uniform mat4 WorldMatrix;

varying vec2 TexCoord;
varying vec4 Color;

void main()
{
	TexCoord = gl_MultiTexCoord0.xy;
	Color = gl_Color;
	gl_Position = ProjectionMatrix * (ViewMatrix * (WorldMatrix * gl_Vertex));
}
