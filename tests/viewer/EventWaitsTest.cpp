// How long the window's events wait while a model loads.
#include "EventWaits.h"

#include "WindowTest.h"
#include <OrvModel/PreparedModel.h>

#include <QtCore/QFileInfo>
#include <QtCore/QMap>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cstdio>
#include <viewer/LoadedFile.h>
#include <viewer/ModelLoader.h>

namespace {

using namespace OrvTest;
using namespace Halvard::Orv;
using namespace Halvard::Orv::Viewer;

const QString Reading = QStringLiteral("reading and preparing");
const QString Between = QStringLiteral("between the uploads");
const QString Texture = QStringLiteral("upload of a texture"); // as uploadOf() names the buffers
const QString Showing = QStringLiteral("taking the model over");
const QString Drawing = QStringLiteral("first frame");
const QString Checking = QStringLiteral("checking, after the load");

struct Buffer
{
    QString name;
    quint64 bytes;
};

/// In the order in which they are uploaded.
std::vector<Buffer> buffersOf(const PreparedModel &model)
{
    const quint64 vertices = model.vertexCount();
    constexpr quint64 MostFor16Bit = 65534;
    std::vector<Buffer> buffers = {
        {QStringLiteral("indices"),
         quint64(model.indexCount()) * (vertices > MostFor16Bit ? 4 : 2)}};
    for (const PreparedModel::Attribute &attribute : model.attributes())
        buffers.push_back(
            {attribute.name, vertices * quint64(attribute.components) * sizeof(float)});
    return buffers;
}

QString uploadOf(const QString &buffer)
{
    return QStringLiteral("upload of ") + buffer;
}

/// Strips of squares with normals and texture coordinates, each strip in one of two materials.
QByteArray strips()
{
    constexpr int Side = 120;
    QByteArray text = "mtllib m.mtl\n";
    for (int y = 0; y <= Side; ++y) {
        for (int x = 0; x <= Side; ++x) {
            const QByteArray place = QByteArray::number(x) + ' ' + QByteArray::number(y) + ' ';
            text += "v " + place + QByteArray::number(x * y % 7) + "\nvt " + place + "\nvn 0 0 1\n";
        }
    }
    for (int y = 0; y < Side; ++y) {
        text += y % 2 ? "usemtl a\n" : "usemtl b\n";
        for (int x = 1; x <= Side; ++x) {
            text += 'f';
            for (const int corner : {0, 1, Side + 2, Side + 1}) {
                const QByteArray number = QByteArray::number(y * (Side + 1) + x + corner);
                text += ' ' + number + '/' + number + '/' + number;
            }
            text += '\n';
        }
    }
    return text;
}

class EventWaitsTest : public WindowTest
{
protected:
    /// The test's own model, or the one that is asked for.
    QString model() const
    {
        if (qEnvironmentVariableIsSet("ORV_WINDOW_WAITS"))
            return qEnvironmentVariable("ORV_WINDOW_WAITS");
        files.write(QStringLiteral("m.mtl"), "newmtl a\nKd 1 0 0\nnewmtl b\nKd 0 1 0\n");
        return files.write(QStringLiteral("model.obj"), strips());
    }

    /// Loads it and waits until it is shown and checked, while spans get the names of what is done.
    void load(EventWaits &waits)
    {
        QObject context;
        QObject::connect(window().findChild<ModelLoader *>(), &ModelLoader::loaded, &context,
                         [&](const std::shared_ptr<LoadedFile> &file) {
                             buffers = buffersOf(*file->model);
                             waits.mark(Between);
                         });
        QObject::connect(&viewport(), &Viewport::uploadProgressed, &context,
                         [&] { endUpload(waits); });
        bool isShown = false;
        QObject::connect(&window(), &MainWindow::modelShown, &context, [&] {
            waits.rename(waits.lastTimer(), Showing);
            waits.mark(Showing); // the rest of it: what is no longer needed goes
            isShown = true;
            QTimer::singleShot(0, &context, [&] { waits.mark(Drawing); });
        });
        bool isDrawn = false;
        QObject::connect(&viewport(), &QOpenGLWidget::frameSwapped, &context, [&] {
            if (isShown && !isDrawn) {
                isDrawn = true;
                waits.mark(Checking);
            }
        });
        waits.mark(Reading);
        window().open(path);
        EXPECT_TRUE(buffers.empty()) << "the load is waited for";
        waitFor([&] { return isDrawn; }, "the first frame", 600);
        const auto *const stop = window().findChild<QPushButton *>(QStringLiteral("stopChecking"));
        waitFor([&] { return stop->isHidden(); }, "the end of the check", 600);
        waits.stop();
    }

    /// The step that ends here began with the timer's event.
    void endUpload(EventWaits &waits)
    {
        const size_t step = waits.lastTimer();
        const bool isBuffer = uploads.size() < buffers.size();
        waits.rename(step, isBuffer ? uploadOf(buffers[uploads.size()].name) : Texture);
        waits.rename(step + 1, Between); // its progress is told
        if (isBuffer)
            uploads.push_back(step);
        waits.mark(Between);
        EXPECT_EQ(answered, asked) << "an event waited for more than one upload";
        ++asked;
        QMetaObject::invokeMethod(
            &window(), [this] { ++answered; }, Qt::QueuedConnection);
    }

    /// What the longest part of a wait was.
    static QString labelOf(const EventWaits &waits, const EventWaits::Wait &wait)
    {
        return waits.spans()[waits.longestSpan(wait)].label;
    }

    const Buffer &largest() const
    {
        return *std::max_element(
            buffers.begin(), buffers.end(),
            [](const Buffer &one, const Buffer &other) { return one.bytes < other.bytes; });
    }

    void print(const EventWaits &waits) const;
    void printRow(const EventWaits &waits) const;

    QString path = model();
    std::vector<Buffer> buffers;
    std::vector<size_t> uploads; ///< the span of each buffer's
    int asked = 0;               ///< after each upload
    int answered = 0;
};

void EventWaitsTest::print(const EventWaits &waits) const
{
    std::printf("%s: %lld bytes\n", qPrintable(QFileInfo(path).fileName()),
                static_cast<long long>(QFileInfo(path).size()));
    std::printf("\n| buffer | MB | ms |\n|---|--:|--:|\n");
    for (size_t i = 0; i < uploads.size(); ++i)
        std::printf("| %s | %.1f | %.1f |\n", qPrintable(buffers[i].name),
                    double(buffers[i].bytes) / 1e6, waits.milliseconds(uploads[i]));
    QMap<QString, std::vector<EventWaits::Wait>> byLabel;
    QStringList order;
    for (const EventWaits::Wait &wait : waits.waits()) {
        const QString label = labelOf(waits, wait);
        if (!byLabel.contains(label))
            order += label;
        byLabel[label].push_back(wait);
    }
    std::printf("\n| waits for | events | median, ms | longest, ms | most of that in |\n"
                "|---|--:|--:|--:|---|\n");
    for (const QString &label : order) {
        std::vector<EventWaits::Wait> &all = byLabel[label];
        std::sort(all.begin(), all.end(), [](const auto &one, const auto &other) {
            return one.milliseconds() < other.milliseconds();
        });
        const EventWaits::Wait &longest = all.back();
        const size_t span = waits.longestSpan(longest);
        std::printf("| %s | %zu | %.1f | %.1f | %s, event %d: %.1f ms |\n", qPrintable(label),
                    all.size(), all[all.size() / 2].milliseconds(), longest.milliseconds(),
                    waits.spans()[span].receiver, waits.spans()[span].event,
                    waits.milliseconds(span));
    }
    printRow(waits);
}

/// As in the record.
void EventWaitsTest::printRow(const EventWaits &waits) const
{
    const auto longest = [&](const auto &isMeant) {
        double most = 0;
        for (const EventWaits::Wait &wait : waits.waits()) {
            if (isMeant(labelOf(waits, wait)))
                most = std::max(most, wait.milliseconds());
        }
        return most;
    };
    const QString inLargest = uploadOf(largest().name);
    const auto isUpload = [](const QString &label) { return label.startsWith(uploadOf({})); };
    std::printf(
        "\n| model | reading | largest buffer | its upload alone | other uploads | "
        "the rest | first frame |\n|---|--:|--:|--:|--:|--:|--:|\n"
        "| %s | %.0f | %.0f | %.0f | %.0f | %.0f | %.0f |\n",
        qPrintable(QFileInfo(path).fileName()),
        longest([](const QString &label) { return label == Reading; }),
        longest([&](const QString &label) { return label == inLargest; }),
        waits.milliseconds(uploads[size_t(&largest() - buffers.data())]),
        longest([&](const QString &label) { return isUpload(label) && label != inLargest; }),
        longest([&](const QString &label) {
            return label != Reading && !isUpload(label) && label != Drawing;
        }),
        longest([](const QString &label) { return label == Drawing; }));
}

/// Any model: ORV_WINDOW_WAITS, a path. It prints the waits; with ORV_WINDOW_WAITS_MOST, a number of
/// milliseconds, no event may wait longer but for the largest buffer and for drawing.
TEST_F(EventWaitsTest, NoEventWaitsForMoreThanOneStepOfALoad)
{
    QTest::qWait(1000); // the window's own start
    EventWaits waits(window());
    load(waits);
    ASSERT_FALSE(HasFailure());
    EXPECT_EQ(int(waits.waits().size()), waits.posted());
    EXPECT_EQ(answered, asked);
    ASSERT_EQ(uploads.size(), buffers.size());
    if (qEnvironmentVariableIsSet("ORV_WINDOW_WAITS"))
        print(waits);
    bool isSet = false;
    const int most = qEnvironmentVariableIntValue("ORV_WINDOW_WAITS_MOST", &isSet);
    for (const EventWaits::Wait &wait : waits.waits()) {
        const QString label = labelOf(waits, wait);
        if (isSet && label != uploadOf(largest().name) && label != Drawing) {
            EXPECT_LE(wait.milliseconds(), most) << label.toStdString();
        }
    }
}

} // namespace
