// The sphere round the eye; the view matrix that it gets holds no translation.
varying vec2 TexCoord;
varying vec3 Direction;

void main()
{
	TexCoord = gl_MultiTexCoord0.xy;
	Direction = gl_Vertex.xyz;
	gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex);
}
