#include <OrvGL/DrawBuffers.h>

#include <OrvGL/BufferObject.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/VertexArrayObject.h>

#include <QtCore/QtDebug>

#include <algorithm>

namespace Halvard::Orv {

namespace {

constexpr auto CommandSize = static_cast<qint64>(sizeof(DrawElementsIndirectCommand));

// Bytes of one index; 0 when `type` is no index type.
int indexSizeOf(GLenum type)
{
    switch (type) {
    case GL_UNSIGNED_BYTE:
        return 1;
    case GL_UNSIGNED_SHORT:
        return 2;
    case GL_UNSIGNED_INT:
        return 4;
    default:
        return 0;
    }
}

bool isLinked(GLuint program)
{
    GLint linked = GL_FALSE;
    if (glIsProgram(program))
        glGetProgramiv(program, GL_LINK_STATUS, &linked);
    return linked == GL_TRUE;
}

} // namespace

DrawBuffers::DrawBuffers(QObject *parent)
    : QObject(parent), _indexType(GL_UNSIGNED_INT), _primitiveType(GL_TRIANGLES)
{}

DrawBuffers::~DrawBuffers() = default;

void DrawBuffers::setVAO(const QSharedPointer<VertexArrayObject> &vao)
{
    _vao = vao;
}

QSharedPointer<VertexArrayObject> DrawBuffers::VAO() const
{
    return _vao;
}

void DrawBuffers::setIndexedDraw(const QSharedPointer<BufferObject> &buffer, int count,
                                 unsigned int type)
{
    _indexBuffer = buffer;
    _indexCount = count;
    _indexType = type;
    _commandBuffer.reset();
}

void DrawBuffers::setVertexCount(unsigned int count)
{
    _vertexCount = count;
}

void DrawBuffers::setPrimitiveType(unsigned int type)
{
    _primitiveType = type;
}

void DrawBuffers::setDrawElementsIndirectCommands(const DrawElementsIndirectCommand *commands,
                                                  int count)
{
    _commands.clear();
    _commands.reserve(std::max(count, 0));
    for (int i = 0; i < count; ++i)
        _commands.append(commands[i]);
    _commandBuffer.reset();
}

QSharedPointer<BufferObject> DrawBuffers::indexBuffer() const
{
    return _indexBuffer;
}

int DrawBuffers::indexCount() const
{
    return _indexCount;
}

unsigned int DrawBuffers::indexType() const
{
    return _indexType;
}

unsigned int DrawBuffers::vertexCount() const
{
    return _vertexCount;
}

unsigned int DrawBuffers::primitiveType() const
{
    return _primitiveType;
}

const QVector<DrawElementsIndirectCommand> &DrawBuffers::commands() const
{
    return _commands;
}

bool DrawBuffers::draw(unsigned int program, int firstCommand, int commandCount)
{
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    const QString missing = whatIsMissing(context, firstCommand, commandCount);
    if (!missing.isNull())
        return refuse(missing);
    if (!isLinked(program))
        return refuse(QStringLiteral("program %1 is not linked").arg(program));
    if (commandCount == 0)
        return true;
    if (!uploadCommands(*context))
        return refuse(QStringLiteral("the commands could not be uploaded"));
    _lastRefusal.clear();

    glUseProgram(program);
    if (!_vao->bind(program))
        return false;
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, _indexBuffer->id()); // becomes part of the vertex array
    glBindBuffer(GL_DRAW_INDIRECT_BUFFER, _commandBuffer->id());
    // OpenGL takes an offset into the bound buffer in the guise of an address.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto *const start = reinterpret_cast<const void *>(firstCommand * CommandSize);
    glMultiDrawElementsIndirect(_primitiveType, _indexType, start, commandCount, 0);
    glBindBuffer(GL_DRAW_INDIRECT_BUFFER, 0);
    _vao->release();
    return true;
}

// Null when a draw can go ahead.
QString DrawBuffers::whatIsMissing(const QSharedPointer<OpenGLDeviceContext> &context,
                                   int firstCommand, int commandCount) const
{
    if (!context)
        return QStringLiteral("no OpenGL context is current");
    if (!context->hasMultiDrawIndirect())
        return QStringLiteral("OpenGL 4.3 or ARB_multi_draw_indirect is needed, this is %1")
            .arg(context->description());
    if (firstCommand < 0 || commandCount < 0 || firstCommand > _commands.size() ||
        commandCount > _commands.size() - firstCommand)
        return QStringLiteral("there are %1 commands, not %3 from number %2 on")
            .arg(_commands.size())
            .arg(firstCommand)
            .arg(commandCount);
    if (!_vao)
        return QStringLiteral("there are no vertex attributes");
    if (!_indexBuffer)
        return QStringLiteral("there is no element buffer");
    if (!_indexBuffer->isUsable())
        return QStringLiteral("the element buffer is of another OpenGL context");
    if (indexSizeOf(_indexType) == 0)
        return QStringLiteral("0x%1 is no type of indices").arg(_indexType, 0, 16);
    return {};
}

// Brings the commands to the GPU where they are not there yet, or not there as they should be.
bool DrawBuffers::uploadCommands(OpenGLDeviceContext &context)
{
    const qint64 indexBytes = _indexBuffer->byteCount();
    if (_commandBuffer && _commandBuffer->isUsable() && _checkedIndexBytes == indexBytes)
        return true;
    const QVector<DrawElementsIndirectCommand> commands = drawableCommands();
    const QSharedPointer<BufferObject> buffer = context.createBufferObject();
    buffer->setTarget(GL_DRAW_INDIRECT_BUFFER);
    buffer->uploadArbitraryData(commands.constData(), commands.size(), GL_STATIC_DRAW,
                                sizeof(DrawElementsIndirectCommand));
    if (buffer->uploadFailed())
        return false;
    _commandBuffer = buffer;
    _checkedIndexBytes = indexBytes;
    return true;
}

// The commands with those emptied that would read beyond the element buffer: what a driver makes of
// such a read ranges from zeros to a lost context. They keep their place, and so gl_DrawIDARB.
QVector<DrawElementsIndirectCommand> DrawBuffers::drawableCommands() const
{
    const qint64 held = _indexBuffer->byteCount() / indexSizeOf(_indexType);
    const qint64 room = std::min<qint64>(std::max(_indexCount, 0), held);
    QVector<DrawElementsIndirectCommand> commands = _commands;
    int emptied = 0;
    for (DrawElementsIndirectCommand &command : commands) {
        if (qint64(command.firstIndex) + command.count > room && command.count > 0) {
            command.count = 0;
            ++emptied;
        }
    }
    if (emptied > 0)
        qWarning("DrawBuffers: %d of %d commands reach beyond the %lld indices there are, and are "
                 "not drawn",
                 emptied, commands.size(), room);
    return commands;
}

// Drawing is repeated for every frame: the reason is logged when it is new.
bool DrawBuffers::refuse(const QString &reason)
{
    if (reason != _lastRefusal)
        qWarning("DrawBuffers: nothing is drawn: %s", qUtf8Printable(reason));
    _lastRefusal = reason;
    return false;
}

} // namespace Halvard::Orv
