#include "ModelFiles.h"

#include <OrvModel/MTLReader.h>
#include <OrvModel/OBJReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <set>

namespace Halvard::Orv::Cli {

namespace {

constexpr QIODevice::OpenMode TextMode = QIODevice::ReadOnly | QIODevice::Text;

/// Opens regular files only: a pipe would wait for somebody to write.
bool open(QFile &file, QIODevice::OpenMode mode)
{
    return !file.fileName().contains(QChar::Null) && QFileInfo(file).isFile() && file.open(mode);
}

QString directoryOf(const QString &fileName)
{
    return QFileInfo(fileName).dir().absolutePath();
}

/// The set is ordered: some names could be made to collide in a hash table.
void addOnce(QStringList &paths, std::set<QString> &known, const QString &path)
{
    if (known.insert(path).second)
        paths += path;
}

/// Whether the bytes of a text can be looked through: not those of UTF-16 and UTF-32.
bool hasWideCharacters(const QByteArray &start)
{
    return start.startsWith("\xff\xfe") || start.startsWith("\xfe\xff") ||
           start.startsWith(QByteArray("\0\0\xfe\xff", 4));
}

/// Whether a line can be one of "mtllib". Carriage returns vanish wherever they are.
bool mayNameALibrary(const QByteArray &line)
{
    if (line.contains("mtllib"))
        return true;
    const int carriageReturn = line.indexOf('\r');
    return carriageReturn >= 0 && carriageReturn < line.size() - 2;
}

/// The few lines of a file that can matter, and the first: it has the mark of the encoding.
QByteArray candidates(QFile &file)
{
    QByteArray lines = file.readLine();
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (line.isEmpty())
            break;
        if (mayNameALibrary(line))
            lines += line;
    }
    return lines;
}

QStringList readLibraries(QIODevice &device, const QString &directory)
{
    QTextStream stream(&device);
    OBJReader reader(stream);
    reader.setBaseDir(directory);
    QStringList paths;
    std::set<QString> known;
    while (reader.valid()) {
        if (reader.parseLine() && reader.getLineType() == OBJReader::LINE_MTLLIB)
            addOnce(paths, known, reader.getMtllibPath());
        reader.next();
    }
    return paths;
}

/// The path of a line's texture; null where it names none.
QString textureOf(const MTLReader &reader)
{
    switch (reader.getLineType()) {
    case MTLReader::LINE_MAP_KD:
        return reader.getMapKdPath();
    case MTLReader::LINE_MAP_KS:
        return reader.getMapKsPath();
    case MTLReader::LINE_MAP_KA:
        return reader.getMapKaPath();
    case MTLReader::LINE_MAP_NS:
        return reader.getMapNsPath();
    default:
        return {};
    }
}

void addTextures(const QString &library, QStringList &paths, std::set<QString> &known)
{
    QFile file(library);
    if (!open(file, TextMode))
        return;
    QTextStream stream(&file);
    MTLReader reader(stream, true);
    reader.setBaseDir(directoryOf(library));
    while (reader.valid()) { // the first pass only moves to the first line
        if (reader.parseLine()) {
            const QString texture = textureOf(reader);
            if (!texture.isNull())
                addOnce(paths, known, texture);
        }
        reader.next();
    }
}

} // namespace

QStringList librariesOf(const QString &model)
{
    QFile file(model);
    if (!open(file, QIODevice::ReadOnly))
        return {};
    const QString directory = directoryOf(model);
    if (hasWideCharacters(file.peek(4))) {
        file.setTextModeEnabled(true);
        return readLibraries(file, directory);
    }
    QByteArray lines = candidates(file);
    QBuffer buffer(&lines);
    buffer.open(TextMode);
    return readLibraries(buffer, directory);
}

ModelFiles filesOf(const QString &model)
{
    ModelFiles files;
    files.libraries = librariesOf(model);
    std::set<QString> known;
    for (const QString &library : qAsConst(files.libraries))
        addTextures(library, files.textures, known);
    return files;
}

} // namespace Halvard::Orv::Cli
