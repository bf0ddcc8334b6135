/// \file
/// Draws a GPUModel.
#pragma once

#include "Camera.h"
#include "DrawPlan.h"
#include "ModelGeometry.h"
#include "Shading.h"
#include "TextureCache.h"

#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <memory>

namespace Halvard::Orv {
class BufferObject;
class GPUModel;
} // namespace Halvard::Orv

namespace Halvard::Orv::Render {

class LineDrawer;
class ShaderProgram;

struct RenderOptions
{
    /// May be transparent. Equal colours make a plain background.
    QColor backgroundTop = QColor(0xf7, 0xf8, 0xfa);
    QColor backgroundBottom = QColor(0xb9, 0xc2, 0xce);
    /// The edges of the triangles on top of the surface.
    bool wireframe = false;
    Shading shading = Shading::Material;
    /// See Overlays.h. On the ground and at the side.
    bool grid = false;
    bool axes = false;
    UpAxis up = UpAxis::Y; ///< square to which the grid lies
    /// The material that stands out from the others, by its name; null for none.
    QString highlighted;
    /// The corners of a face to mark, in order; empty for none. Its hidden parts shine through.
    std::vector<QVector3D> marked;
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

    /// The same with what was made ready before: nothing is read back, and of the textures only
    /// those are decoded and uploaded that were not yet.
    /// \param geometry of the model, as geometryOf() gives it.
    void setModel(const GPUModel *model, ModelGeometry geometry,
                  std::unique_ptr<TextureCache> textures);

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
    void addBundle(int index, std::vector<PlannedCommand> &commands);
    void uploadRecords();
    void drawBackground(const RenderOptions &options);
    void drawSurfaces(const Camera &camera, const RenderOptions &options);
    void drawLines(const Camera &camera);
    double lineOpacity() const;
    void drawOverlays(const Camera &camera, const RenderOptions &options);
    unsigned recordOf(const QString &material) const;
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
    std::unique_ptr<LineDrawer> _wideLines;
    bool _knowsDrawNumber = false;
    unsigned _emptyVertexArray = 0;

    const GPUModel *_model = nullptr;
    ModelGeometry _geometry;
    std::unique_ptr<TextureCache> _textures;
    DrawPlan _plan;
    double _triangles = 0;
    std::vector<Record> _records;
    std::vector<unsigned> _firstRecord; // by bundle
    QSharedPointer<BufferObject> _recordBuffer;
};

} // namespace Halvard::Orv::Render
