#include "Shaders.h"

namespace Halvard::Orv::Render {

namespace {

constexpr char VersionLine[] = "#version 430 core\n";

constexpr char DrawNumber[] = R"(
#extension GL_ARB_shader_draw_parameters : require
#define DRAW_NUMBER uint(gl_DrawIDARB)
)";

constexpr char NoDrawNumber[] = R"(
#define DRAW_NUMBER 0u
)";

constexpr char ModelVertex[] = R"(
in vec3 va_Vertex;
in vec3 va_Normal;
in vec2 va_TexCoord;

uniform vec3 uCentre;
uniform float uRootScale;
uniform mat4 uView;
uniform mat4 uProjection;
uniform uint uFirstRecord;

out vec3 vPosition;
out vec3 vNormal;
out vec3 vModelNormal;
out vec2 vTexCoord;
out float vInvalid;
flat out uint vRecord;

const float largest = 3.4e38;

// Unit length for every direction, also where its square is no float; zero where
// there is no direction.
vec3 unitOrZero(vec3 direction)
{
    float size = max(max(abs(direction.x), abs(direction.y)), abs(direction.z));
    if (!(size > 0.0 && size <= largest) || any(isnan(direction)))
        return vec3(0.0);
    return normalize(direction / size);
}

void main()
{
    vRecord = uFirstRecord + DRAW_NUMBER;
    vTexCoord = va_TexCoord;
    vModelNormal = unitOrZero(va_Normal);
    vNormal = mat3(uView) * vModelNormal;

    // A triangle with a corner nowhere is not drawn: the fragment shaders drop
    // whatever is not exactly 0 here.
    bool isValid = all(lessThanEqual(abs(va_Vertex), vec3(largest)));
    vInvalid = isValid ? 0.0 : 1.0;
    if (!isValid) {
        vPosition = vec3(0.0);
        gl_Position = vec4(0.0, 0.0, 0.0, 1.0);
        return;
    }
    precise vec3 once = (va_Vertex - uCentre) * uRootScale;
    precise vec3 position = once * uRootScale;
    vec4 seen = uView * vec4(position, 1.0);
    vPosition = seen.xyz;
    gl_Position = uProjection * seen;
}
)";

constexpr char FragmentInputs[] = R"(
in vec3 vPosition;
in vec3 vNormal;
in vec3 vModelNormal;
in vec2 vTexCoord;
in float vInvalid;
flat in uint vRecord;

out vec4 fColour;

// Of the face. Taken from the screen's right and up, it points towards the viewer,
// whichever way the corners run.
vec3 faceNormal(vec3 toViewer)
{
    vec3 normal = cross(dFdx(vPosition), dFdy(vPosition));
    float size = length(normal);
    return size > 0.0 ? normal / size : toViewer;
}

uniform uint uHighlighted; // a record; none beyond all of them

// A highlighted material stands out from the rest, which becomes pale and grey.
vec3 emphasised(vec3 colour)
{
    if (uHighlighted == 0xffffffffu)
        return colour;
    if (uHighlighted == vRecord)
        return mix(colour, vec3(1.0, 0.55, 0.1), 0.45);
    return mix(vec3(dot(colour, vec3(0.3, 0.6, 0.1))), vec3(0.75), 0.5);
}
)";

constexpr char SurfaceFragment[] = R"(
struct Material {
    vec4 diffuse;  // and opacity
    vec4 specular; // and shininess
};

layout(std430, binding = 0) readonly buffer Materials {
    Material materials[];
};

layout(binding = 0) uniform sampler2D uDiffuseMap;
layout(binding = 1) uniform sampler2D uSpecularMap;
uniform mat4 uView;
uniform bool uIsBlended;
uniform int uShading;
uniform vec3 uUp;

// As in the enumeration Shading.
const int Flat = 1;
const int TextureCoordinates = 3;
const int Groups = 4;
const int BackFaces = 5;

const float gamma = 2.2;

// In view space, from the surface to the light.
const vec3 keyLight = normalize(vec3(-0.35, 0.5, 0.8));
const vec3 fillLight = normalize(vec3(0.8, -0.1, 0.6));
// Together they light a surface to a little less than its own colour.
const vec3 keyColour = vec3(0.80, 0.785, 0.76);
const vec3 fillColour = vec3(0.13, 0.135, 0.14);
const vec3 skyColour = vec3(0.24, 0.25, 0.27);
const vec3 groundColour = vec3(0.06, 0.055, 0.055);

// A stored normal may point to either side; it is taken to the side of the face
// that is seen.
vec3 shadingNormal(vec3 toViewer)
{
    vec3 face = faceNormal(toViewer);
    float size = length(vNormal);
    if (uShading == Flat || !(size > 1e-3))
        return face;
    vec3 normal = vNormal / size;
    return dot(normal, face) < 0.0 ? -normal : normal;
}

// Eight fields a unit, light and dark, redder along u and greener along v. Where they are smaller
// than pixels, what they are on average.
vec3 checkerColour()
{
    vec2 fields = vTexCoord * 8.0;
    vec2 step = fwidth(fields);
    float isDark = mod(floor(fields.x) + floor(fields.y), 2.0);
    isDark = mix(isDark, 0.5, smoothstep(0.5, 1.0, max(step.x, step.y)));
    vec2 place = fract(vTexCoord);
    return vec3(0.3 + 0.7 * place, 0.55) * mix(1.0, 0.4, isDark);
}

// Hues a golden section apart: neighbours differ, and no two are ever the same.
vec3 groupColour()
{
    float hue = fract(0.11 + float(vRecord) * 0.61803398875);
    vec3 parts = abs(fract(hue + vec3(0.0, 2.0 / 3.0, 1.0 / 3.0)) * 6.0 - 3.0) - 1.0;
    return mix(vec3(0.35), vec3(0.9), clamp(parts, 0.0, 1.0));
}

// What stands for the material in the modes that show something else.
vec3 shownColour()
{
    if (uShading == TextureCoordinates)
        return checkerColour();
    if (uShading == Groups)
        return groupColour();
    return gl_FrontFacing ? vec3(0.72) : vec3(0.85, 0.12, 0.1);
}

void main()
{
    // Derivatives, also those behind texture(), are undefined after a discard.
    vec3 toViewer = normalize(-vPosition);
    vec3 normal = shadingNormal(toViewer);
    Material material = materials[vRecord];
    vec4 diffuseTexel = texture(uDiffuseMap, vTexCoord);
    vec3 shown = shownColour();
    vec3 specularTexel = texture(uSpecularMap, vTexCoord).rgb;
    if (vInvalid != 0.0)
        discard;

    if (uShading >= TextureCoordinates) {
        material = Material(vec4(shown, 1.0), vec4(0.0, 0.0, 0.0, 1.0));
        diffuseTexel = vec4(1.0);
    }
    float opacity = material.diffuse.a;
    if (uIsBlended)
        opacity *= diffuseTexel.a;
    else if (diffuseTexel.a < 0.5)
        discard;

    vec3 up = mat3(uView) * uUp;
    float sky = 0.5 + 0.5 * dot(normal, up);
    float key = max(dot(normal, keyLight), 0.0);
    float fill = max(dot(normal, fillLight), 0.0);
    vec3 light = mix(groundColour, skyColour, sky) + keyColour * key + fillColour * fill;
    vec3 colour = pow(material.diffuse.rgb * diffuseTexel.rgb, vec3(gamma)) * light;

    // A dull highlight is wide, and would wash out the surface if it were as bright
    // as a sharp one.
    float shininess = material.specular.a;
    float brightness = min(1.0, 0.2 + shininess / 80.0) * smoothstep(0.0, 0.2, key);
    float highlight = pow(max(dot(normal, normalize(keyLight + toViewer)), 0.0), shininess);
    vec3 specular = pow(material.specular.rgb * specularTexel, vec3(gamma)) * highlight * brightness;

    // Added like a second exposure, which approaches white and never passes it.
    colour = min(colour, 1.0);
    colour += specular * (1.0 - colour);
    float shine = max(max(specular.r, specular.g), specular.b);
    opacity += shine * (1.0 - opacity);
    fColour = vec4(emphasised(pow(colour, vec3(1.0 / gamma))) * opacity, opacity);
}
)";

constexpr char NormalsFragment[] = R"(
void main()
{
    vec3 face = faceNormal(normalize(-vPosition));
    if (vInvalid != 0.0)
        discard;
    float size = length(vModelNormal);
    vec3 normal = size > 1e-3 ? vModelNormal / size : vec3(0.0);
    // Files store normals to either side, and generated ones have a side of their own.
    if (dot(vNormal, face) < 0.0)
        normal = -normal;
    fColour = vec4(emphasised(0.5 + 0.5 * normal), 1.0);
}
)";

constexpr char LineFragment[] = R"(
uniform vec4 uColour;

void main()
{
    if (vInvalid != 0.0)
        discard;
    fColour = vec4(uColour.rgb * uColour.a, uColour.a);
}
)";

constexpr char BackgroundVertex[] = R"(
out float vHeight;

// One triangle that covers the picture.
void main()
{
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0;
    vHeight = 0.5 + 0.5 * corner.y;
    gl_Position = vec4(corner, 0.0, 1.0);
}
)";

constexpr char BackgroundFragment[] = R"(
in float vHeight;

uniform vec4 uTop;
uniform vec4 uBottom;

out vec4 fColour;

void main()
{
    vec4 colour = mix(uBottom, uTop, vHeight);
    fColour = vec4(colour.rgb * colour.a, colour.a);
}
)";

constexpr char WideLineVertex[] = R"(
struct Line {
    vec4 from; // and width
    vec4 to;
    vec4 colour;
};

layout(std430, binding = 1) readonly buffer Lines {
    Line lines[];
};

uniform mat4 uMatrix;
uniform vec3 uViewport; // width, height
uniform float uDepthBias;

out vec3 vPlace;
flat out vec2 vFrom; // in pixels
flat out vec2 vTo;
flat out float vRadius;
flat out vec4 vColour;

// Which end, and which side of the line: two triangles.
const vec2 corners[6] = vec2[](vec2(0, -1), vec2(0, 1), vec2(1, -1),
                               vec2(1, -1), vec2(0, 1), vec2(1, 1));

vec2 pixelOf(vec4 position)
{
    return (0.5 + 0.5 * position.xy / position.w) * uViewport.xy;
}

void main()
{
    Line line = lines[gl_VertexID / 6];
    vec2 corner = corners[gl_VertexID % 6];
    vec4 from = uMatrix * vec4(line.from.xyz, 1.0);
    vec4 to = uMatrix * vec4(line.to.xyz, 1.0);
    vec3 fromPlace = line.from.xyz;
    vec3 toPlace = line.to.xyz;
    vColour = line.colour;
    vRadius = 0.5 * line.from.w;
    vPlace = vec3(0.0);
    vFrom = vTo = vec2(0.0);

    // What lies behind the eye is cut off: it would come out mirrored.
    const float least = 1e-3;
    if (from.w < least && to.w < least) {
        gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
        return;
    }
    float cut = (least - from.w) / (to.w - from.w);
    if (from.w < least) {
        from = mix(from, to, cut);
        fromPlace = mix(fromPlace, toPlace, cut);
    } else if (to.w < least) {
        to = mix(from, to, cut);
        toPlace = mix(fromPlace, toPlace, cut);
    }

    vFrom = pixelOf(from);
    vTo = pixelOf(to);
    vec2 along = vTo - vFrom;
    float size = length(along);
    along = size > 1e-3 ? along / size : vec2(1.0, 0.0);
    vec2 aside = vec2(-along.y, along.x);
    // Room for the round ends and for the half pixel in which a border fades.
    float room = vRadius + 1.0;
    vec4 end = corner.x < 0.5 ? from : to;
    vec2 pixel = (corner.x < 0.5 ? vFrom - along * room : vTo + along * room) +
                 aside * corner.y * room;
    vPlace = corner.x < 0.5 ? fromPlace : toPlace;
    gl_Position = vec4((2.0 * pixel / uViewport.xy - 1.0) * end.w,
                       end.z - uDepthBias * end.w, end.w);
}
)";

constexpr char WideLineFragment[] = R"(
in vec3 vPlace;
flat in vec2 vFrom;
flat in vec2 vTo;
flat in float vRadius;
flat in vec4 vColour;

uniform float uOpacity;
uniform vec3 uFadeCentre;
uniform float uFadeRadius;

out vec4 fColour;

void main()
{
    vec2 along = vTo - vFrom;
    float part = clamp(dot(gl_FragCoord.xy - vFrom, along) / max(dot(along, along), 1e-6), 0.0, 1.0);
    float distance = length(gl_FragCoord.xy - vFrom - part * along);
    float opacity = uOpacity * vColour.a * clamp(vRadius + 0.5 - distance, 0.0, 1.0);
    if (uFadeRadius > 0.0)
        opacity *= 1.0 - smoothstep(0.35, 1.0, length(vPlace - uFadeCentre) / uFadeRadius);
    fColour = vec4(vColour.rgb * opacity, opacity);
}
)";

QByteArray fragmentShader(const char *body)
{
    return QByteArray(VersionLine) + FragmentInputs + body;
}

} // namespace

QByteArray modelVertexShader(bool knowsDrawNumber)
{
    return QByteArray(VersionLine) + (knowsDrawNumber ? DrawNumber : NoDrawNumber) + ModelVertex;
}

QByteArray surfaceFragmentShader()
{
    return fragmentShader(SurfaceFragment);
}

QByteArray normalsFragmentShader()
{
    return fragmentShader(NormalsFragment);
}

QByteArray lineFragmentShader()
{
    return fragmentShader(LineFragment);
}

QByteArray backgroundVertexShader()
{
    return QByteArray(VersionLine) + BackgroundVertex;
}

QByteArray backgroundFragmentShader()
{
    return QByteArray(VersionLine) + BackgroundFragment;
}

QByteArray wideLineVertexShader()
{
    return QByteArray(VersionLine) + WideLineVertex;
}

QByteArray wideLineFragmentShader()
{
    return QByteArray(VersionLine) + WideLineFragment;
}

} // namespace Halvard::Orv::Render
