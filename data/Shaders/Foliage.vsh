// Boughs of a tree that stands upright on its own z axis. Being lit as one round crown, they are lit at their corners.
uniform mat4 WorldMatrix;
uniform mat4 SMMatrix;
uniform vec3 CameraPos;
uniform vec3 FogColor;
uniform vec2 FogData;  // distance at which the fog closes, exponent
uniform vec4 LightDir; // direction of the light's travel; sun: w is the amount of cloud
uniform vec3 AmbientColor;
uniform vec3 LightColor;

varying vec3 ShadowPos; // sun: in the shadow map, 0 to 1; spot: its x, y and w in the map's clip space
varying vec2 TexCoord;
#ifdef L_AMBDIR
varying vec3 Around;  // light from everywhere but the sun
varying float Sun;    // part of the sun's light, where no shadow falls
varying float Beyond; // 0 within the shadow map, 1 where it has ended
varying vec4 Air;     // fog's light and its share
#else
uniform sampler2D ProjMap;
varying vec3 WorldPos;
varying vec3 Normal;
varying float Open;     // part of the sky that a place in the crown sees
varying float Unveiled; // 1 if the light throws no picture, else 0
#endif

#ifdef L_AMBDIR
// Clouds dim the sun evenly, and in patches some hundreds of units wide, the same as on the ground.
float CloudShare(vec2 Place, float Amount)
{
	float Patch = sin(Place.x * 0.0061 + 2.1 * sin(Place.y * 0.0023)) * sin(Place.y * 0.0047 + 1.9 * sin(Place.x * 0.0031));
	return 1.0 - Amount * (0.5 + 0.9 * smoothstep(-0.1, 0.7, Patch));
}

// The sky lights what the sun does not reach, and the air shows how bright it is: 1 on a clear morning. The root, since
// the eye gets used to the dark.
vec3 SkyLight()
{
	return sqrt(FogColor * 0.63 + dot(FogColor, vec3(0.21)));
}

void Light(vec3 World, vec3 N, float Open)
{
	vec3 ToEye = CameraPos - World;
	float Distance = length(ToEye);
	float Toward = max(dot(ToEye, LightDir.xyz) / Distance, 0.0);
	// Needles let the sun through: seen against it they glow.
	float Facing = dot(N, -LightDir.xyz);
	Sun = max((Facing + 0.35) / 1.35, 0.0) * (0.35 + 0.65 * Open) + 0.75 * Toward * Toward * Open;
	Sun *= 0.95 * CloudShare(World.xy, LightDir.w);
	// The snow below gives back what the sky sends, warmed by the sun.
	Around = AmbientColor * vec3(3.7, 3.2, 3.3) * SkyLight() * ((0.72 + 0.28 * N.z) * Open)
		+ LightColor * (0.20 * (1.0 - 0.7 * max(N.z, 0.0)) * Open);
	float Far = pow(min(Distance / FogData.x, 1.0), FogData.y);
	Far *= 2.0 - Far;
	Air = vec4((FogColor + LightColor * vec3(0.10, 0.085, 0.06) * pow(Toward, 4.0)) * Far, Far);
}
#endif

void main()
{
	// As in Mesh: a tree grows out of the ground before it is left out of the picture at 500.
	float Grown = 1.0 - smoothstep(360.0, 495.0, distance(WorldMatrix[3].xyz, CameraPos));
	vec4 World = WorldMatrix * vec4(gl_Vertex.xyz * Grown, 1.0);
	vec4 Shadow = SMMatrix * World;
	Shadow.x = -Shadow.x; // the map is drawn mirrored
	// A card's own normal shows that it is a card; the crown's is that of a cone round the trunk.
	float Out = length(gl_Vertex.xy);
	vec3 Crown = vec3(gl_Vertex.xy / max(Out, 0.01), 0.75);
	vec3 N = normalize((WorldMatrix * vec4(normalize(Crown) + 0.25 * gl_Normal, 0.0)).xyz);
	// A card's v is 1 at the trunk, where the boughs above take the sky away, and 0 at its tip.
	float Sky = 1.0 - 0.42 * gl_MultiTexCoord0.y;
#ifdef L_AMBDIR
	// In whole texels of the world, as the map is drawn.
	vec2 Beside = fract(SMMatrix[3].xy * 1024.0) / 1024.0;
	ShadowPos = vec3(Shadow.x + Beside.x, Shadow.y - Beside.y, Shadow.z) * 0.5 + 0.5;
	Beyond = smoothstep(0.80, 0.98, max(abs(Shadow.x), abs(Shadow.y)));
	Light(World.xyz, N, Sky);
#else
	ShadowPos = Shadow.xyw;
	WorldPos = World.xyz;
	Normal = N;
	Open = Sky;
	// The mean of the picture; where there is no picture it is black.
	Unveiled = 1.0 - step(0.001, dot(texture2DLod(ProjMap, vec2(0.5), 16.0).xyz, vec3(1.0)));
#endif
	TexCoord = gl_MultiTexCoord0.xy;
	gl_Position = ProjectionMatrix * (ViewMatrix * World);
}
