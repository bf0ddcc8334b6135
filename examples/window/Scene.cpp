#include "Scene.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvGL/TextureManager.h>

#include <QtCore/QtDebug>
#include <QtGui/QColor>

using namespace Halvard::Orv;

namespace {

// The attributes of a model find the inputs of the shader by their names.
const char VertexShader[] = R"(#version 430
in vec3 va_Vertex;
in vec3 va_Normal;
in vec2 va_TexCoord; // zeros where the file has none
layout(location = 0) uniform mat4 view;
layout(location = 1) uniform mat4 projection;
layout(location = 2) uniform float normalSign;
out vec3 normal;
out vec2 texCoord;

void main()
{
    normal = normalSign * mat3(view) * va_Normal; // turns with the model; the light does not
    texCoord = va_TexCoord;
    gl_Position = projection * view * vec4(va_Vertex, 1.0);
})";

// The materials of all commands are one array, its records laid out by the plan "OBJMaterial".
const char FragmentShader[] = R"(#version 430
struct Material {
    float Ns, d;
    vec3 Kd, Ks, Ke;
    uint map_Ns, map_Kd, map_Ks, map_Ke; // 1 where the material names an image
};
layout(std430, binding = 0) readonly buffer Materials { Material materials[]; };
layout(location = 3) uniform uint command;
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

} // namespace

unsigned makeSceneProgram()
{
    const unsigned program = glCreateProgram();
    const auto attach = [program](unsigned type, const char *text) {
        const unsigned shader = glCreateShader(type);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
    };
    attach(GL_VERTEX_SHADER, VertexShader);
    attach(GL_FRAGMENT_SHADER, FragmentShader);
    glLinkProgram(program);
    return program;
}

Scene::Scene(LoadedModel loaded)
    : _loaded(std::move(loaded)), _normalsAreGenerated(_loaded.model->normalsAreGenerated()),
      _upload(std::make_unique<ModelUpload>(*_loaded.model, _model))
{}

Scene::~Scene()
{
    glDeleteBuffers(1, &_records);
}

bool Scene::uploadNext()
{
    if (_upload) {
        if (_upload->step())
            return true;
        const bool isFinished = _upload->isFinished();
        _upload.reset(); // before the arrays that it reads
        _loaded.model.reset();
        return isFinished;
    }
    if (!_loaded.images.isEmpty()) {
        uploadNextImage();
        return true;
    }
    uploadRecords();
    _isComplete = true;
    return false;
}

void Scene::uploadNextImage()
{
    const PreparedTexture image = _loaded.images.take(_loaded.images.firstKey());
    QString reason;
    // Ours, and gone with the scene; uploadTexture() would keep it as long as the process lives.
    std::unique_ptr<Texture> texture = makeTexture(image, &reason);
    if (texture)
        _images[image.fileName] = std::move(texture);
    else
        qWarning("The texture '%s' %s.", qPrintable(image.fileName), qPrintable(reason));
}

// A file gives one bundle, or none where there is nothing to draw.
void Scene::uploadRecords()
{
    if (_model.bundleCount() == 0)
        return;
    QList<InstanceData> materials = _model.materials(0)->records();
    const float white[] = {1, 1, 1};
    for (InstanceData &material : materials) // what a file leaves out is zeros in the array
        if (material.value("Kd").isEmpty())
            material.set("Kd", white, sizeof(white));
    const QByteArray records = InstanceDataCollection("OBJMaterial", materials).pack();
    glGenBuffers(1, &_records);
    glBindBuffer(GL_SHADER_STORAGE_BUFFER, _records);
    glBufferData(GL_SHADER_STORAGE_BUFFER, records.size(), records.constData(), GL_STATIC_DRAW);
}

void Scene::draw(unsigned program, QMatrix4x4 view, const QMatrix4x4 &projection)
{
    if (!_isComplete || _model.bundleCount() == 0)
        return;
    view.scale(1 / _loaded.radius);
    view.translate(-_loaded.centre);
    glProgramUniformMatrix4fv(program, 0, 1, GL_FALSE, view.constData());
    glProgramUniformMatrix4fv(program, 1, 1, GL_FALSE, projection.constData());
    // A file's normals point outwards; generated ones to where corners run clockwise: inwards.
    glProgramUniform1f(program, 2, _normalsAreGenerated ? -1 : 1);
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, _records);
    Texture *const white = TextureManager::Instance().colorTexture(Qt::white);
    const QList<InstanceData> &materials = _model.materials(0)->records();
    for (int command = 0; command < materials.size(); ++command) { // one for each material
        const auto image = _images.find(materials[command].texturePath("map_Kd"));
        (image == _images.end() ? white : image->second.get())->bindToUnit(0);
        glProgramUniform1ui(program, 3, unsigned(command));
        _model.bundle(0)->draw(program, command, 1);
    }
}
