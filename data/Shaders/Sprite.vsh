// Sprites that face the eye, built in world space. The third texture coordinate is the sprite's layer.
varying vec3 TexCoord;
varying vec4 Color;

void main()
{
	TexCoord = gl_MultiTexCoord0.xyz;
	Color = gl_Color;
	gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex);
}
