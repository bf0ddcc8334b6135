#include "LineDrawer.h"

#include "ShaderProgram.h"
#include "Shaders.h"

#include <OrvGL/OpenGLFunctions.h>

namespace Halvard::Orv::Render {

namespace {

/// As the shader reads it.
struct Record
{
    float from[4]; // and width
    float to[4];
    float colour[4];
};

Record recordOf(const Line &line)
{
    return {{line.from.x(), line.from.y(), line.from.z(), line.width},
            {line.to.x(), line.to.y(), line.to.z(), 0},
            {float(line.colour.redF()), float(line.colour.greenF()), float(line.colour.blueF()),
             float(line.colour.alphaF())}};
}

} // namespace

LineDrawer::LineDrawer()
{
    glGenVertexArrays(1, &_vertexArray);
    glGenBuffers(1, &_buffer);
}

LineDrawer::~LineDrawer()
{
    glDeleteBuffers(1, &_buffer);
    glDeleteVertexArrays(1, &_vertexArray);
}

std::unique_ptr<LineDrawer> LineDrawer::create(QString *error)
{
    std::unique_ptr<LineDrawer> drawer(new LineDrawer);
    drawer->_program =
        ShaderProgram::create(wideLineVertexShader(), wideLineFragmentShader(), error);
    return drawer->_program ? std::move(drawer) : nullptr;
}

void LineDrawer::draw(const std::vector<Line> &lines, const LineView &view)
{
    if (lines.empty())
        return;
    std::vector<Record> records;
    for (const Line &line : lines)
        records.push_back(recordOf(line));
    glBindBuffer(GL_SHADER_STORAGE_BUFFER, _buffer);
    glBufferData(GL_SHADER_STORAGE_BUFFER, GLsizeiptr(records.size() * sizeof(Record)),
                 records.data(), GL_STREAM_DRAW);
    glBindBuffer(GL_SHADER_STORAGE_BUFFER, 0);
    glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 1, _buffer);

    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    _program->set("uMatrix", view.matrix);
    _program->set("uViewport", QVector3D(float(viewport[2]), float(viewport[3]), 0));
    _program->set("uDepthBias", view.depthBias);
    _program->set("uOpacity", view.opacity);
    _program->set("uFadeCentre", view.fadeCentre);
    _program->set("uFadeRadius", view.fadeRadius);

    glUseProgram(_program->id());
    glBindVertexArray(_vertexArray);
    if (view.isHidden)
        glEnable(GL_DEPTH_TEST);
    else
        glDisable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_FALSE);
    // The clipping planes close around the model; lines go on beyond them.
    glEnable(GL_DEPTH_CLAMP);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    constexpr int VerticesOfALine = 6;
    glDrawArrays(GL_TRIANGLES, 0, VerticesOfALine * GLsizei(lines.size()));
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_CLAMP);
    glDepthMask(GL_TRUE);
    glDisable(GL_DEPTH_TEST);
    glBindVertexArray(0);
}

} // namespace Halvard::Orv::Render
