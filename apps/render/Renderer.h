/// \file
/// Draws a GPUModel.
#pragma once

#include "Camera.h"
#include "DrawPlan.h"
#include "ModelGeometry.h"
#include "TextureCache.h"

#include <QtCore/QSharedPointer>
#include <QtGui/QColor>

#include <memory>

class QString;

namespace Halvard::Orv {
class BufferObject;
class GPUModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

class ShaderProgram;

/// What the surface of a model shows. The shaders know the numbers.
enum class Shading
{
    /// The materials, lit by the stored normals.
    Material = 0,
    /// The materials, each face lit by itself.
    Flat = 1,
    /// The stored normals as colours, (x, y, z) from -1..1 to 0..1, without light. A normal
    /// that points away from the viewer is turned round, since files and generated normals
    /// differ in their side.
    Normals = 2,
    /// A checker of eight fields a unit, redder along u and greener along v.
    TextureCoordinates = 3,
    /// A colour for each draw command.
    Groups = 4,
    /// Faces whose corners run clockwise, in red.
    BackFaces = 5
};

struct RenderOptions
{
    /// May be transparent. Equal colours make a plain background.
    QColor backgroundTop = QColor(0xf7, 0xf8, 0xfa);
    QColor backgroundBottom = QColor(0xb9, 0xc2, 0xce);
    /// The edges of the triangles on top of the surface.
    bool wireframe = false;
    Shading shading = Shading::Material;
};

/// Draws models with their materials, lit from beside the camera and from the sky.
///
/// Surfaces are seen, and lit, from both sides. The matrices of the instance records,
/// which the loader leaves at identity, are not applied.
///
/// Needs the same OpenGL 4.3+ context current from create() to the end of its life.
class Renderer
{
public:
    /// \param error receives a sentence when the result is null; may be null.
    static std::unique_ptr<Renderer> create(QString *error = nullptr);
    ~Renderer();
    Renderer(const Renderer &) = delete;
    Renderer &operator=(const Renderer &) = delete;

    /// What draw() draws from now on. Loads the model's textures, with a warning for
    /// each file that cannot be used.
    /// \param model must outlive its use here and not change; null draws nothing.
    void setModel(const GPUModel *model, const TextureSettings &textures = {});

    /// Where the model lies, for frameModel().
    const ModelGeometry &geometry() const { return _geometry; }

    /// Draws background and model into the bound framebuffer and the viewport set.
    /// The framebuffer's colours come out multiplied by alpha. Blending, depth test,
    /// culling, polygon mode and offset are off afterwards, and the texture units 0
    /// and 1 and the storage binding 0 are ours.
    void draw(const Camera &camera, const RenderOptions &options);

private:
    Renderer();
    bool buildPrograms(QString *error);
    void addBundle(int index, TextureCache &textures, std::vector<PlannedCommand> &commands);
    void uploadRecords();
    void drawBackground(const RenderOptions &options);
    void drawSurfaces(const Camera &camera, const RenderOptions &options);
    void drawLines(const Camera &camera);
    double lineOpacity() const;
    void drawRun(ShaderProgram &program, const DrawRun &run);
    std::vector<DrawRun> blendedBackToFront(const Camera &camera) const;

    /// A material as the shader reads it.
    struct Record
    {
        float diffuse[4];  // and opacity
        float specular[4]; // and shininess
    };

    std::unique_ptr<ShaderProgram> _background;
    std::unique_ptr<ShaderProgram> _surface;
    std::unique_ptr<ShaderProgram> _normals;
    std::unique_ptr<ShaderProgram> _lines;
    bool _knowsDrawNumber = false;
    unsigned _emptyVertexArray = 0;

    const GPUModel *_model = nullptr;
    ModelGeometry _geometry;
    DrawPlan _plan;
    double _triangles = 0;
    std::vector<Record> _records;
    std::vector<unsigned> _firstRecord; // by bundle
    QSharedPointer<BufferObject> _recordBuffer;
};

} // namespace Halvard::Orv::Render
