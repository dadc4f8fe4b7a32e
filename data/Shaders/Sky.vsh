// The sphere round the eye; the view matrix that it gets holds no translation.
varying vec2 TexCoord;
varying float Up; // sine of the elevation

void main()
{
	TexCoord = gl_MultiTexCoord0.xy;
	Up = normalize(gl_Vertex.xyz).z;
	gl_Position = ProjectionMatrix * (ViewMatrix * gl_Vertex);
}
