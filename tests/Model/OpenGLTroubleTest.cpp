// OpenGL that has no room, or is gone before the model is up: there is a message, and no
// model by halves.
#include "support/BothPaths.h"
#include "support/GLTest.h"
#include "support/ModelBuilding.h"
#include "support/TemporaryModel.h"

#include <OrvGL/BufferObject.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/HeadlessContext.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/TextureLoading.h>

#include <gmock/gmock.h>

#include <QtGui/QImage>

#include <functional>
#include <memory>
#include <utility>

using namespace Halvard::Orv;
using namespace OrvTest;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

/// Puts a function of the test in the place of one of the driver's while it lives.
template <typename Function>
class Replaced
{
public:
    Replaced(Function &slot, Function replacement) : _slot(slot), _driver(slot)
    {
        _slot = replacement;
    }
    ~Replaced() { _slot = _driver; }
    Replaced(const Replaced &) = delete;
    Replaced &operator=(const Replaced &) = delete;

    Function driver() const { return _driver; }

private:
    Function &_slot;
    Function _driver;
};

/// Asks the driver, in one of the uploads, for more bytes than any machine has, so that
/// the error is its own.
class FailingUpload
{
public:
    explicit FailingUpload(int succeeding) : _replaced(epoxy_glBufferData, upload)
    {
        remaining = succeeding;
        driver = _replaced.driver();
    }

    static bool hasFailed() { return remaining < 0; }

private:
    static void APIENTRY upload(GLenum target, GLsizeiptr size, const void *data, GLenum usage)
    {
        if (remaining-- == 0)
            driver(target, GLsizeiptr(1) << 61, nullptr, usage);
        else
            driver(target, size, data, usage);
    }

    static inline int remaining = 0;
    static inline PFNGLBUFFERDATAPROC driver = nullptr;
    Replaced<PFNGLBUFFERDATAPROC> _replaced;
};

/// Does something when the loader logs how many vertices it has welded: all has been
/// read, and nothing uploaded.
class WhenWelded
{
public:
    explicit WhenWelded(std::function<void()> what)
    {
        action = std::move(what);
        _previous = qInstallMessageHandler(handle);
    }
    ~WhenWelded()
    {
        qInstallMessageHandler(_previous);
        action = nullptr;
    }
    WhenWelded(const WhenWelded &) = delete;
    WhenWelded &operator=(const WhenWelded &) = delete;

    std::vector<std::string> warnings() const { return texts; }

private:
    static void handle(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        if (type == QtWarningMsg)
            texts.push_back(text.toStdString());
        if (action && text.contains(QLatin1String("Vertices Map")))
            std::exchange(action, nullptr)();
    }

    static inline std::function<void()> action;
    static inline std::vector<std::string> texts;
    QtMessageHandler _previous;
};

class OpenGLTrouble : public GLTest
{
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        // The loader of OpenGL's functions looks each up when it is first called.
        const auto buffer = OpenGLDeviceContext::current()->createBufferObject();
        buffer->uploadArbitraryData("", 1, GL_STATIC_DRAW, 1);
        fileName = files.write(QStringLiteral("m.obj"),
                               "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nf 1/1 2/1 3/1\n");
    }

    /// Loads once, and expects no part of a model.
    void expectNothing(LoaderPath path)
    {
        QString error = UploadedModel::untouchedError();
        const std::unique_ptr<GPUModel> model(loadModelByPath(fileName, error, path));
        EXPECT_EQ(error, UploadedModel::untouchedError()) << "the file is not at fault";
        ASSERT_TRUE(model);
        EXPECT_EQ(model->bundleCount(), 0);
    }

    TemporaryModel files;
    QString fileName;
};

const char NotAdded[] =
    "GPUModel::add: the bundle is not added, since a buffer of it could not be uploaded";

TEST_F(OpenGLTrouble, AnyBufferMayFindNoRoom)
{
    for (const LoaderPath path : BothPaths) {
        int buffers = 0;
        for (;; ++buffers) {
            SCOPED_TRACE(buffers);
            const FailingUpload failing(buffers);
            const UploadedModel outcome = loadByPath(fileName, path);
            EXPECT_FALSE(outcome.isNull);
            EXPECT_EQ(outcome.error, UploadedModel::untouchedError());
            if (!FailingUpload::hasFailed()) {
                EXPECT_EQ(outcome.bundles.size(), 1u);
                break;
            }
            EXPECT_EQ(outcome.bundles.size(), 0u);
            EXPECT_THAT(outcome.warnings(), Contains(HasSubstr("GL_OUT_OF_MEMORY")));
            EXPECT_EQ(outcome.warnings().back(), NotAdded);
        }
        EXPECT_EQ(buffers, 4) << "elements, positions, normals, texture coordinates";
    }
}

/// Buffers are shared by all batches: no room for one means no bundle at all.
TEST_F(OpenGLTrouble, NoneOfManyBatchesIsAddedWithoutItsBuffers)
{
    ModelBuilder builder({}, 3);
    addFaces(builder, {3, 3, 3});
    addAttribute(builder, vertexName(), 3, {0, 0, 0, 1, 0, 0, 0, 1, 0},
                 {0, 1, 2, 1, 2, 0, 2, 0, 1});
    for (const unsigned group : {0u, 1u, 2u})
        addGroup(builder, QString::number(group), {group}, group);
    GPUModel model;
    const auto upload = [&] {
        builder.upload(&model, InstanceData(), vertexName(), QString(), GL_STATIC_DRAW,
                       GL_TRIANGLES);
    };
    {
        const MessageCapture messages;
        const FailingUpload failing(1);
        upload();
        EXPECT_EQ(messages.texts(QtWarningMsg).back(), NotAdded);
    }
    EXPECT_EQ(model.bundleCount(), 0);
    upload();
    EXPECT_EQ(model.bundleCount(), 3) << "with room again, the builder still has everything";
}

TEST_F(OpenGLTrouble, TheContextMayBeGoneBeforeTheUpload)
{
    for (const LoaderPath path : BothPaths) {
        std::unique_ptr<NoCurrentContext> gone;
        const WhenWelded handler([&] { gone = std::make_unique<NoCurrentContext>(); });
        expectNothing(path);
        EXPECT_TRUE(gone);
        EXPECT_THAT(handler.warnings(),
                    Contains("BufferObject::upload: the buffer's OpenGL context is not current"));
        EXPECT_EQ(handler.warnings().back(), NotAdded);
    }
}

TEST_F(OpenGLTrouble, AnotherContextMayBeCurrentBeforeTheUpload)
{
    for (const LoaderPath path : BothPaths) {
        const auto other = HeadlessContext::create();
        ASSERT_TRUE(other);
        const WhenWelded handler([&] { EXPECT_TRUE(other->makeCurrent()); });
        expectNothing(path);
        EXPECT_EQ(handler.warnings().back(), NotAdded);
        GLTest::SetUp();
    }
}

GLenum APIENTRY lost()
{
    return GL_CONTEXT_LOST;
}

QString writeImage(const TemporaryModel &files)
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString path = files.path(QStringLiteral("image.png"));
    EXPECT_TRUE(image.save(path));
    return path;
}

/// A lost context answers every question with the same error.
TEST_F(OpenGLTrouble, ALostContextIsNoReasonToHang)
{
    const QString image = writeImage(files);
    glGetError(); // looks the function up
    const Replaced<PFNGLGETERRORPROC> replaced(epoxy_glGetError, lost);
    for (const LoaderPath path : BothPaths) {
        const UploadedModel outcome = loadByPath(fileName, path);
        EXPECT_EQ(outcome.bundles.size(), 0u);
        EXPECT_THAT(outcome.warnings(), Contains(HasSubstr("GL_CONTEXT_LOST")));
    }
    const MessageCapture messages;
    EXPECT_FALSE(LoadTexture(image));
    EXPECT_THAT(messages.texts(QtWarningMsg),
                ElementsAre("'" + image.toStdString() +
                            "' is not loaded: it has 4 x 4 pixels, which OpenGL does not take "
                            "(error 0x0507)"));
}

PFNGLTEXIMAGE2DPROC driverTexImage = nullptr;

/// Fewer texels than none: the driver refuses them.
void APIENTRY wrongTexImage(GLenum target, GLint level, GLint internalFormat, GLsizei,
                            GLsizei height, GLint border, GLenum format, GLenum type, const void *)
{
    driverTexImage(target, level, internalFormat, -1, height, border, format, type, nullptr);
}

GLenum texImageError = GL_NO_ERROR;

void APIENTRY fullTexImage(GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum,
                           const void *)
{
    texImageError = GL_OUT_OF_MEMORY;
}

GLenum APIENTRY errorOfTexImage()
{
    return std::exchange(texImageError, GLenum(GL_NO_ERROR));
}

TEST_F(OpenGLTrouble, ATextureThatFindsNoRoomIsNotKept)
{
    const QString image = writeImage(files);
    glTexImage2D(GL_PROXY_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    const std::string notLoaded =
        "'" + image.toStdString() + "' is not loaded: it has 4 x 4 pixels, ";
    {
        const Replaced<PFNGLTEXIMAGE2DPROC> replaced(epoxy_glTexImage2D, wrongTexImage);
        driverTexImage = replaced.driver();
        const MessageCapture messages;
        EXPECT_FALSE(LoadTexture(image));
        EXPECT_THAT(messages.texts(QtWarningMsg),
                    Contains(notLoaded + "which OpenGL does not take (error 0x0501)"));
    }
    {
        glGetError(); // looks the function up
        const Replaced<PFNGLTEXIMAGE2DPROC> full(epoxy_glTexImage2D, fullTexImage);
        const Replaced<PFNGLGETERRORPROC> error(epoxy_glGetError, errorOfTexImage);
        const MessageCapture messages;
        EXPECT_FALSE(LoadTexture(image));
        EXPECT_THAT(messages.texts(QtWarningMsg),
                    ElementsAre(notLoaded + "for which OpenGL has no memory"));
    }
    static Texture *texture = nullptr; // for the leak sanitizer: it lives as long as the process
    texture = LoadTexture(image);
    EXPECT_TRUE(texture);
}

} // namespace
