// Lines and faces in the colour of their vertices.
varying vec4 Color;

void main()
{
	Color = gl_Color;
	gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex);
}
