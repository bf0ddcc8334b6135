// One table of textures for all threads. It is of interest under the thread sanitizer.
#include "support/AtOnce.h"
#include "support/MessageCapture.h"
#include "support/TemporaryModel.h"

#include <OrvGL/HeadlessContext.h>
#include <OrvModel/TextureLoading.h>
#include <OrvModel/TexturePreparing.h>

#include <gtest/gtest.h>

#include <QtGui/QImage>

#include <array>

using namespace Halvard::Orv;
using namespace OrvTest;

namespace {

constexpr int Threads = threadsAtOnce;

QString image(const TemporaryModel &files, const char *name)
{
    QImage pixels(16, 16, QImage::Format_RGB32);
    pixels.fill(Qt::red);
    const QString path = files.path(QLatin1String(name));
    EXPECT_TRUE(pixels.save(path, "PNG"));
    return path;
}

TEST(TextureThreads, AllGetTheSameTexture)
{
    const TemporaryModel files;
    const QString path = image(files, "t");
    // They live as long as the process, and the leak sanitizer is to find them.
    static std::array<Texture *, Threads> textures;
    std::array<std::unique_ptr<HeadlessContext>, Threads> contexts;
    const MessageCapture messages;
    runAtOnce([&](int thread) {
        QString error;
        auto &context = contexts[std::size_t(thread)];
        context = HeadlessContext::create(&error);
        if (!context || !context->makeCurrent())
            return;
        textures[std::size_t(thread)] = LoadTexture(path);
        context->doneCurrent();
    });
    for (Texture *const texture : textures) {
        ASSERT_TRUE(texture);
        EXPECT_EQ(texture, textures[0]);
    }
}

TEST(TextureThreads, ImagesArePreparedWithoutOpenGL)
{
    const TemporaryModel files;
    const QString path = image(files, "t");
    std::array<PreparedTexture, Threads> prepared;
    runAtOnce([&](int thread) { prepared[std::size_t(thread)] = prepareTexture(path); });
    for (const PreparedTexture &texture : prepared)
        EXPECT_EQ(texture.image, prepared[0].image);
    EXPECT_FALSE(prepared[0].isNull());
}

} // namespace
