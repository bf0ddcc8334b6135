#include "Renderer.h"

#include "LineDrawer.h"
#include "Material.h"
#include "Overlays.h"
#include "ShaderProgram.h"
#include "Shaders.h"

#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvGL/TextureManager.h>

#include <QtCore/QString>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Halvard::Orv::Render {

namespace {

Texture *whiteTexture()
{
    return TextureManager::Instance().colorTexture(Qt::white);
}

/// White, which changes nothing, where there is none: every draw has its textures.
Texture *resolve(const TextureReference &reference, TextureCache &cache)
{
    if (reference.texture)
        return reference.texture;
    Texture *texture = reference.path.isEmpty() ? nullptr : cache.texture(reference.path);
    return texture ? texture : whiteTexture();
}

/// What attributes that a model lacks read: no normal, and the texture's corner.
void clearGenericAttributes(unsigned program)
{
    for (const char *name : {"va_Vertex", "va_Normal", "va_TexCoord"}) {
        const GLint location = glGetAttribLocation(program, name);
        if (location >= 0)
            glVertexAttrib4f(GLuint(location), 0, 0, 0, 1);
    }
}

void setCamera(ShaderProgram &program, const Camera &camera)
{
    program.set("uCentre", camera.centre);
    program.set("uRootScale", camera.rootScale);
    program.set("uView", camera.view);
    program.set("uProjection", camera.projection);
    program.set("uUp", camera.up);
}

/// Whether the materials are seen, with what shines through them.
bool showsMaterials(Shading shading)
{
    return shading == Shading::Material || shading == Shading::Flat;
}

/// Draws twice, first the faces turned away, so that the far side of a thing
/// is seen through its near side.
template <typename Draw>
void fromBothSides(Draw &&draw)
{
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT);
    draw();
    glCullFace(GL_BACK);
    draw();
    glDisable(GL_CULL_FACE);
}

} // namespace

Renderer::Renderer() = default;

Renderer::~Renderer()
{
    glDeleteVertexArrays(1, &_emptyVertexArray);
}

std::unique_ptr<Renderer> Renderer::create(QString *error)
{
    const auto context = OpenGLDeviceContext::current();
    if (!context || context->version() < 43) {
        if (error)
            *error = QStringLiteral("Drawing needs OpenGL 4.3 or later.");
        return nullptr;
    }
    std::unique_ptr<Renderer> renderer(new Renderer);
    renderer->_knowsDrawNumber = context->hasDrawParameters();
    glGenVertexArrays(1, &renderer->_emptyVertexArray);
    if (!renderer->buildPrograms(error))
        return nullptr;
    return renderer;
}

bool Renderer::buildPrograms(QString *error)
{
    const QByteArray vertex = modelVertexShader(_knowsDrawNumber);
    QString log;
    _background = ShaderProgram::create(backgroundVertexShader(), backgroundFragmentShader(), &log);
    if (_background)
        _surface = ShaderProgram::create(vertex, surfaceFragmentShader(), &log);
    if (_surface)
        _normals = ShaderProgram::create(vertex, normalsFragmentShader(), &log);
    if (_normals)
        _lines = ShaderProgram::create(vertex, lineFragmentShader(), &log);
    if (_lines)
        _wideLines = LineDrawer::create(&log);
    if (!_wideLines && error)
        *error = QStringLiteral("The OpenGL driver refuses a shader: %1").arg(log.trimmed());
    return _wideLines != nullptr;
}

void Renderer::setModel(const GPUModel *model, const TextureSettings &textures)
{
    TextureSettings settings = textures;
    GLint mostOnASide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &mostOnASide);
    settings.mostOnASide = std::min(settings.mostOnASide, int(mostOnASide));
    setModel(model, model ? readGeometry(*model) : ModelGeometry(),
             std::make_unique<TextureCache>(std::move(settings)));
}

void Renderer::setModel(const GPUModel *model, ModelGeometry geometry,
                        std::unique_ptr<TextureCache> textures)
{
    _model = model;
    _geometry = std::move(geometry);
    _triangles = 0;
    _records.clear();
    _firstRecord.clear();
    std::vector<PlannedCommand> commands;
    _plan = {}; // which has pointers into the textures
    _textures = std::move(textures);
    for (int i = 0; model && i < model->bundleCount(); ++i)
        addBundle(i, commands);
    _plan = planDraws(commands, _knowsDrawNumber);
    uploadRecords();
}

void Renderer::addBundle(int index, std::vector<PlannedCommand> &commands)
{
    const InstanceDataCollection *materials = _model->materials(index);
    _firstRecord.push_back(unsigned(_records.size()));
    for (const DrawElementsIndirectCommand &command : _model->bundle(index)->commands())
        _triangles += double(command.count) / 3 * command.instanceCount;
    for (int i = 0; i < _model->bundle(index)->commands().size(); ++i) {
        const bool hasRecord = materials && i < materials->records().size();
        const Material material =
            hasRecord ? materialFromRecord(materials->records()[i]) : Material();
        _records.push_back(
            {{material.diffuse.x(), material.diffuse.y(), material.diffuse.z(), material.opacity},
             {material.specular.x(), material.specular.y(), material.specular.z(),
              material.shininess}});
        commands.push_back({index, i, material.isOpaque(), resolve(material.diffuseMap, *_textures),
                            resolve(material.specularMap, *_textures)});
    }
}

void Renderer::uploadRecords()
{
    _recordBuffer = OpenGLDeviceContext::current()->createBufferObject();
    _recordBuffer->setTarget(GL_SHADER_STORAGE_BUFFER);
    _recordBuffer->uploadArbitraryData(_records.data(), int(_records.size()), GL_STATIC_DRAW,
                                       sizeof(Record));
}

void Renderer::draw(const Camera &camera, const RenderOptions &options)
{
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);
    drawBackground(options);
    if (_model && !_records.empty()) {
        glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, _recordBuffer->id());
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        drawSurfaces(camera, options);
        if (options.wireframe)
            drawLines(camera);
        glDisable(GL_DEPTH_TEST);
    }
    drawOverlays(camera, options);
}

void Renderer::drawOverlays(const Camera &camera, const RenderOptions &options)
{
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    const QSize picture(viewport[2], viewport[3]);
    if (options.grid && !_geometry.bounds.isEmpty()) {
        LineView view;
        const QColor &background = options.backgroundBottom;
        const std::vector<Line> lines =
            gridLines(_geometry.bounds, camera, options.up,
                      background.alpha() == 0 ? QColor(Qt::white) : background, view);
        _wideLines->draw(lines, view);
    }
    if (!options.marked.empty()) {
        const std::vector<Line> lines = markLines(options.marked, camera, picture);
        LineView view;
        view.matrix = camera.projection * camera.view;
        view.isHidden = false;
        view.opacity = 0.35f;
        _wideLines->draw(lines, view);
        view.isHidden = true;
        view.opacity = 1;
        view.depthBias = 1e-4f;
        _wideLines->draw(lines, view);
    }
    if (options.axes) {
        LineView view;
        view.isHidden = false;
        _wideLines->draw(axisLines(camera, picture), view);
    }
}

/// A number beyond all records where no command has the material.
unsigned Renderer::recordOf(const QString &material) const
{
    for (int i = 0; !material.isNull() && i < int(_firstRecord.size()); ++i) {
        for (int slot = 0; slot < _model->bundle(i)->commands().size(); ++slot) {
            if (_model->materialName(i, slot) == material)
                return _firstRecord[size_t(i)] + unsigned(slot);
        }
    }
    return std::numeric_limits<unsigned>::max();
}

void Renderer::drawBackground(const RenderOptions &options)
{
    _background->set("uTop", options.backgroundTop);
    _background->set("uBottom", options.backgroundBottom);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glUseProgram(_background->id());
    glBindVertexArray(_emptyVertexArray);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glBindVertexArray(0);
}

void Renderer::drawSurfaces(const Camera &camera, const RenderOptions &options)
{
    ShaderProgram &program = options.shading == Shading::Normals ? *_normals : *_surface;
    const bool blends = showsMaterials(options.shading);
    setCamera(program, camera);
    program.set("uShading", int(options.shading));
    program.set("uHighlighted", recordOf(options.highlighted));
    clearGenericAttributes(program.id());
    // Pushed back a little, so that lines on the surface are not cut up by it. Only then: at
    // silhouettes, what is behind comes through.
    if (options.wireframe) {
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(1, 1);
    }
    program.set("uIsBlended", 0);
    for (const DrawRun &run : _plan.opaque)
        drawRun(program, run);

    if (blends) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
        glDepthMask(GL_FALSE);
        program.set("uIsBlended", 1);
    }
    for (const DrawRun &run : blendedBackToFront(camera)) {
        if (blends)
            fromBothSides([&] { drawRun(program, run); });
        else
            drawRun(program, run);
    }
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
    glDisable(GL_POLYGON_OFFSET_FILL);
}

void Renderer::drawLines(const Camera &camera)
{
    setCamera(*_lines, camera);
    QColor colour(20, 24, 32);
    colour.setAlphaF(lineOpacity());
    _lines->set("uColour", colour);
    clearGenericAttributes(_lines->id());
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    for (const DrawRun &run : _plan.opaque)
        drawRun(*_lines, run);
    for (const DrawRun &run : _plan.blended)
        drawRun(*_lines, run);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_BLEND);
}

/// Lines that lie close are drawn fainter, so that many of them upon a pixel darken it less than
/// a single one would: a dense mesh keeps its shape.
double Renderer::lineOpacity() const
{
    constexpr double Single = 0.6;
    constexpr double Dense = 0.35;
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    // Of a model that fills half of the picture, half of whose triangles are seen.
    const double pixels = std::max(0.5 * viewport[2] * viewport[3], 1.0);
    const double spacing = std::sqrt(pixels / std::max(0.5 * _triangles, 1.0));
    // Three edges of some 1.5 spacings and one pixel's width, on a triangle of one spacing's
    // square. Shared edges are drawn twice.
    const double linesOnAPixel = std::max(3 * 1.5 / spacing, 1.0);
    const double darkness = Dense + (Single - Dense) / linesOnAPixel;
    return 1 - std::pow(1 - darkness, 1 / linesOnAPixel);
}

void Renderer::drawRun(ShaderProgram &program, const DrawRun &run)
{
    program.set("uFirstRecord", _firstRecord[size_t(run.bundle)] + unsigned(run.firstCommand));
    run.diffuseMap->bindToUnit(0);
    run.specularMap->bindToUnit(1);
    _model->bundle(run.bundle)->draw(program.id(), run.firstCommand, run.commandCount);
}

std::vector<DrawRun> Renderer::blendedBackToFront(const Camera &camera) const
{
    const auto depth = [this, &camera](const DrawRun &run) {
        const Bounds &bounds =
            _geometry.commandBounds[size_t(run.bundle)][size_t(run.firstCommand)];
        const QVector3D position =
            (bounds.centre() - camera.centre) * camera.rootScale * camera.rootScale;
        return camera.view.map(position).z();
    };
    std::vector<DrawRun> runs = _plan.blended;
    // The camera looks along -z: the lowest z is farthest away.
    std::stable_sort(runs.begin(), runs.end(),
                     [&depth](const DrawRun &a, const DrawRun &b) { return depth(a) < depth(b); });
    return runs;
}

} // namespace Halvard::Orv::Render
