// Draws a model into a picture, textured and lit, without a window:  draw MODEL.obj OUT.png
#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvGL/TextureManager.h>
#include <OrvModel/InstanceDataPlans.h>
#include <OrvModel/ModelPreparing.h>
#include <OrvModel/ModelUploading.h>
#include <OrvModel/TexturePreparing.h>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtGui/QMatrix4x4>
#include <cmath>

using namespace Halvard::Orv;

// The attributes of a model find the inputs of the shader by their names.
const char VertexShader[] = R"(#version 430
in vec3 va_Vertex;
in vec3 va_Normal;
in vec2 va_TexCoord; // zeros where the file has none
layout(location = 0) uniform mat4 camera;
layout(location = 1) uniform float normalSign;
out vec3 normal;
out vec2 texCoord;

void main()
{
    normal = normalSign * va_Normal;
    texCoord = va_TexCoord;
    gl_Position = camera * vec4(va_Vertex, 1.0);
})";

// The materials of all commands are one array, its records laid out by the plan "OBJMaterial".
const char FragmentShader[] = R"(#version 430
struct Material {
    float Ns, d;
    vec3 Kd, Ks, Ke;
    uint map_Ns, map_Kd, map_Ks, map_Ke; // 1 where the material names an image
};
layout(std430, binding = 0) readonly buffer Materials { Material materials[]; };
layout(location = 2) uniform uint command;
layout(binding = 0) uniform sampler2D diffuseMap;
in vec3 normal;
in vec2 texCoord;
out vec4 colour;

void main()
{
    vec3 toLight = normalize(vec3(0.4, 1.0, 0.7));
    float light = 0.3 + 0.7 * max(dot(normalize(normal), toLight), 0.0);
    vec3 diffuse = materials[command].Kd * texture(diffuseMap, texCoord).rgb;
    colour = vec4(diffuse * light, 1.0);
})";

unsigned makeProgram()
{
    const unsigned program = glCreateProgram();
    const auto attach = [program](unsigned type, const char *text) {
        const unsigned shader = glCreateShader(type);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader); // Qt's logger hears what the compiler has to say
        glAttachShader(program, shader);
    };
    attach(GL_VERTEX_SHADER, VertexShader);
    attach(GL_FRAGMENT_SHADER, FragmentShader);
    glLinkProgram(program);
    return program;
}

void addBuffer(unsigned attachment, unsigned format, QSize size)
{
    unsigned buffer = 0;
    glGenRenderbuffers(1, &buffer);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer);
    glRenderbufferStorage(GL_RENDERBUFFER, format, size.width(), size.height());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer);
}

// The image of a material; white, which changes nothing, where there is none.
Texture *diffuseMap(const InstanceData &material)
{
    Texture *const white = TextureManager::Instance().colorTexture(Qt::white);
    const QString path = material.texturePath("map_Kd"); // absolute; not opened so far
    if (path.isEmpty())
        return white;
    PrepareTextureOptions options;
    options.convertsTo32Bits = true; // grey and indexed images, too
    QString reason;
    if (Texture *image = uploadTexture(prepareTexture(path, options), &reason))
        return image;
    qWarning("The texture '%s' %s.", qPrintable(path), qPrintable(reason));
    return white;
}

void drawBundle(GPUModel &model, int bundle, unsigned program)
{
    QList<InstanceData> materials = model.materials(bundle)->records();
    const float white[] = {1, 1, 1};
    for (InstanceData &material : materials) // what a file leaves out is zeros in the array
        if (material.value("Kd").isEmpty())
            material.set("Kd", white, sizeof(white));
    const QByteArray records = InstanceDataCollection("OBJMaterial", materials).pack();

    unsigned buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, buffer);
    glBufferData(GL_SHADER_STORAGE_BUFFER, records.size(), records.constData(), GL_STATIC_DRAW);
    for (int command = 0; command < materials.size(); ++command) { // one for each material
        diffuseMap(materials[command])->bindToUnit(0);
        glProgramUniform1ui(program, 2, unsigned(command));
        model.bundle(bundle)->draw(program, command, 1);
    }
    glDeleteBuffers(1, &buffer);
}

// Looks at the sphere around the model's box, which fills the height of the picture.
QMatrix4x4 cameraFor(const PreparedModel &model, QSize size)
{
    const QVector3D centre = (model.minimum() + model.maximum()) / 2;
    const float radius = (model.maximum() - model.minimum()).length() / 2;
    const float distance = radius / std::sin(0.35f); // 20 degrees, half of the opening
    QMatrix4x4 camera;
    camera.perspective(40, float(size.width()) / float(size.height()), distance - radius,
                       distance + radius);
    camera.lookAt(centre + distance * QVector3D(0.5f, 0.4f, 1).normalized(), centre, {0, 1, 0});
    return camera;
}

QImage draw(const PreparedModel &prepared, GPUModel &model, QSize size)
{
    unsigned framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    addBuffer(GL_COLOR_ATTACHMENT0, GL_RGBA8, size);
    addBuffer(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, size);
    glViewport(0, 0, size.width(), size.height());
    glEnable(GL_DEPTH_TEST);
    glClearColor(0.1f, 0.12f, 0.15f, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    const unsigned program = makeProgram();
    glProgramUniformMatrix4fv(program, 0, 1, GL_FALSE, cameraFor(prepared, size).constData());
    // A file's normals point outwards; generated ones to where corners run clockwise: inwards.
    glProgramUniform1f(program, 1, prepared.normalsAreGenerated() ? -1 : 1);
    for (int bundle = 0; bundle < model.bundleCount(); ++bundle)
        drawBundle(model, bundle, program);

    QImage picture(size, QImage::Format_RGBA8888);
    glReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, picture.bits());
    return picture.mirrored(); // the first row of OpenGL is the lowest
}

int fail(const QString &sentence)
{
    qCritical("%s", qPrintable(sentence));
    return 1;
}

int main(int count, char **arguments)
{
    QLoggingCategory::setFilterRules("default.debug=false"); // what welding did, for example
    if (count != 3)
        return fail("Usage: draw MODEL.obj OUT.png");
    QString error;
    const auto context = HeadlessContext::create(&error); // or make that of your window current
    if (!context || !context->makeCurrent())
        return fail("No OpenGL: " + error);

    registerOBJMaterial(); // once; else a model without a material library has no plan to pack by
    const auto prepared = prepareModelFromOBJFile(QFile::decodeName(arguments[1]), error);
    if (!prepared)
        return fail(error);
    GPUModel model;
    if (!uploadPreparedModel(*prepared, model))
        return fail("OpenGL has no room for the model.");
    if (!draw(*prepared, model, QSize(640, 480)).save(QFile::decodeName(arguments[2])))
        return fail("The picture cannot be written.");
}
