#include "Check/ChecksPage.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>
#include <QtGui/QImage>

namespace OrvTest {

namespace {

/// The bytes of an escaped box: "\r" and "\xNN" stand for one byte each.
QByteArray unescaped(const QByteArray &text)
{
    QByteArray bytes;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != '\\') {
            bytes += text.at(i);
        } else if (text.mid(i, 2) == "\\r") {
            bytes += '\r';
            i += 1;
        } else {
            bytes += static_cast<char>(text.mid(i + 2, 2).toInt(nullptr, 16));
            i += 3;
        }
    }
    return bytes;
}

/// A box of a section: what stands behind its opening fence, and its lines.
void takeBox(CheckExample &example, const QStringList &words, const QByteArray &contents)
{
    const QString kind = words.value(0);
    if (kind == QLatin1String("findings")) {
        example.findings = QString::fromUtf8(contents);
    } else if (kind == QLatin1String("changes")) {
        example.changes = QString::fromUtf8(contents);
    } else if (kind == QLatin1String("fixed")) {
        example.fixed.push_back({words.value(1), contents, false});
    } else if (kind == QLatin1String("image")) {
        example.files.push_back({words.value(1), {}, true});
    } else if (kind == QLatin1String("obj") || kind == QLatin1String("mtl") ||
               kind == QLatin1String("file")) {
        const bool isEscaped = words.value(2) == QLatin1String("escaped");
        example.files.push_back(
            {words.value(1), isEscaped ? unescaped(contents) : contents, false});
    } else {
        ADD_FAILURE() << "a box of kind '" << kind.toStdString() << "'";
    }
}

} // namespace

void CheckExample::write(const QString &directory) const
{
    for (const ExampleFile &example : files) {
        const QString path = directory + QLatin1Char('/') + example.name;
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        if (example.isImage) {
            QImage image(1, 1, QImage::Format_RGB32);
            image.fill(Qt::white);
            ASSERT_TRUE(image.save(path, "PNG"));
            continue;
        }
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(example.contents), example.contents.size());
    }
}

std::vector<CheckExample> readChecksPage(const QString &fileName)
{
    std::vector<CheckExample> examples;
    QFile page(fileName);
    EXPECT_TRUE(page.open(QIODevice::ReadOnly)) << fileName.toStdString();
    QStringList box; // the words of its fence
    QByteArray contents;
    while (!page.atEnd()) {
        const QByteArray line = page.readLine();
        if (!box.isEmpty()) {
            if (line.startsWith("```")) {
                takeBox(examples.back(), box, contents);
                box.clear();
                contents.clear();
            } else {
                contents += line;
            }
        } else if (line.startsWith("### ")) {
            examples.emplace_back();
            examples.back().code = QString::fromUtf8(line.mid(4)).trimmed();
        } else if (line.startsWith("```")) {
            box = QString::fromUtf8(line.mid(3)).simplified().split(QLatin1Char(' '));
        }
    }
    return examples;
}

} // namespace OrvTest
