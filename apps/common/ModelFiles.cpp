#include "ModelFiles.h"

#include <OrvModel/MTLReader.h>
#include <OrvModel/OBJReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <set>

namespace Halvard::Orv::Apps {

namespace {

constexpr QIODevice::OpenMode TextMode = QIODevice::ReadOnly | QIODevice::Text;

/// Opens regular files only: a pipe would wait for somebody to write. Standard input, which is
/// "-", cannot be read twice.
bool open(QFile &file, QIODevice::OpenMode mode)
{
    return file.fileName() != QLatin1String("-") && !file.fileName().contains(QChar::Null) &&
           QFileInfo(file).isFile() && file.open(mode);
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

/// How many faces there are in some lines, as the loader counts them: those that can be read.
quint64 facesIn(QByteArray lines)
{
    QBuffer buffer(&lines);
    buffer.open(TextMode);
    QTextStream stream(&buffer);
    OBJReader reader(stream);
    quint64 faces = 0;
    while (reader.valid()) {
        if (reader.parseLine() && reader.getLineType() == OBJReader::LINE_F)
            ++faces;
        reader.next();
    }
    return faces;
}

/// The line of a face in some lines; `number` is its number among the faces there.
qint64 lineOfFace(const QByteArray &lines, quint64 number)
{
    qint64 line = 0;
    int at = 0;
    for (quint64 faces = 0; at < lines.size() && faces <= number; ++line) {
        const int end = lines.indexOf('\n', at);
        const int next = end < 0 ? lines.size() : end + 1;
        faces += facesIn(lines.mid(at, next - at));
        at = next;
    }
    return line;
}

/// Some thousand lines, so that few bytes are looked at twice; empty at the end.
QByteArray nextLines(QFile &file)
{
    constexpr int PieceSize = 64 * 1024;
    QByteArray lines = file.read(PieceSize);
    return lines.isEmpty() ? lines : lines + file.readLine();
}

/// Every keyword of the format, whether the loader knows it or not.
bool isKeyword(const QByteArray &word)
{
    static const std::set<QByteArray> Keywords = {
        "v",      "vt",         "vn",        "vp",       "cstype", "deg",    "bmat",   "step",
        "p",      "l",          "f",         "curv",     "curv2",  "surf",   "parm",   "trim",
        "hole",   "scrv",       "sp",        "end",      "con",    "g",      "s",      "mg",
        "o",      "bevel",      "c_interp",  "d_interp", "lod",    "usemtl", "mtllib", "usemap",
        "maplib", "shadow_obj", "trace_obj", "ctech",    "stech",  "call",   "csh"};
    return Keywords.count(word) != 0;
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

std::vector<qint64> linesOfFaces(const QString &model, const std::vector<quint64> &faces)
{
    std::vector<qint64> result;
    QFile file(model);
    if (!open(file, QIODevice::ReadOnly) || hasWideCharacters(file.peek(4)))
        return result;
    quint64 facesBefore = 0;
    qint64 linesBefore = 0;
    while (result.size() < faces.size()) {
        const QByteArray lines = nextLines(file);
        if (lines.isEmpty())
            break;
        const quint64 count = facesIn(lines);
        while (result.size() < faces.size() && faces[result.size()] < facesBefore + count)
            result.push_back(linesBefore + lineOfFace(lines, faces[result.size()] - facesBefore));
        facesBefore += count;
        linesBefore += lines.count('\n');
    }
    return result;
}

bool hasNoOBJLine(const QString &model)
{
    constexpr qint64 LookedAt = 1 << 20;
    QFile file(model);
    if (!open(file, QIODevice::ReadOnly) || hasWideCharacters(file.peek(4)))
        return false;
    bool hasLines = false;
    for (QByteArray line = file.readLine(LookedAt); !line.isEmpty() && file.pos() <= LookedAt;
         line = file.readLine(LookedAt)) {
        if (line.startsWith("\xef\xbb\xbf"))
            line.remove(0, 3);
        const QByteArray text = line.simplified();
        if (text.isEmpty() || text.startsWith('#'))
            continue;
        if (isKeyword(text.left(text.indexOf(' '))))
            return false;
        hasLines = true;
    }
    return hasLines;
}

} // namespace Halvard::Orv::Apps
