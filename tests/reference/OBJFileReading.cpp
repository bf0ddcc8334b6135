#include "reference/FileReading.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegExp>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>

namespace OrvReference {

using namespace OrvTest;

namespace {

constexpr int Absent = 0x7fffffff;

struct Corner
{
    int v;
    int vn;
    int vt;
};

/// Lines of each kind seen so far, also those that did not parse.
struct LineCounts
{
    int v = 0;
    int vn = 0;
    int vt = 0;
};

Record defaultMaterial()
{
    const auto floats = [](std::initializer_list<float> values) {
        return QByteArray(reinterpret_cast<const char *>(values.begin()),
                          static_cast<int>(values.size() * sizeof(float)));
    };
    Record record{QStringLiteral("OBJMaterial"), {}};
    record.set({QStringLiteral("Ka"), floats({0.0f, 0.0f, 0.0f}), {}, false});
    record.set({QStringLiteral("Kd"), floats({0.7f, 0.7f, 0.7f}), {}, false});
    record.set({QStringLiteral("Ks"), floats({1.0f, 1.0f, 1.0f}), {}, false});
    record.set({QStringLiteral("Ns"), floats({10.0f}), {}, false});
    record.set({QStringLiteral("d"), floats({1.0f}), {}, false});
    record.set({QStringLiteral("map_Kd"), {}, {}, true});
    record.set({QStringLiteral("map_Ks"), {}, {}, true});
    return record;
}

int resolveIndex(int index, int count)
{
    if (index > 0)
        return index - 1;
    if (index == 0)
        return Absent;
    return index + count;
}

/// \return false when a corner does not parse: the face is then no face at all.
bool readCorners(const QStringList &tokens, const LineCounts &counts, std::vector<Corner> &corners)
{
    for (int t = 1; t < tokens.size(); ++t) {
        if (tokens[t].startsWith(QLatin1Char('#')))
            return true;
        const QStringList parts = tokens[t].split(QLatin1Char('/'), Qt::KeepEmptyParts);
        int position = 0;
        int texture = 0;
        int normal = 0;
        bool ok = false;
        position = parts[0].toInt(&ok, 10);
        if (!ok)
            return false;
        if (parts.size() >= 2 && !parts[1].isEmpty()) {
            texture = parts[1].toInt(&ok, 10);
            if (!ok)
                return false;
        }
        if (parts.size() >= 3 && !parts[2].isEmpty()) {
            normal = parts[2].toInt(&ok, 10);
            if (!ok)
                return false;
        }
        corners.push_back({resolveIndex(position, counts.v), resolveIndex(normal, counts.vn),
                           resolveIndex(texture, counts.vt)});
    }
    return true;
}

void addValue(PlainModel &model, const QString &name, const std::vector<float> &value)
{
    PlainAttribute &attribute = model.attributes[name];
    attribute.components = static_cast<int>(value.size());
    attribute.values.insert(attribute.values.end(), value.begin(), value.end());
}

void addIndex(PlainModel &model, const QString &name, int index)
{
    const auto attribute = model.attributes.find(name);
    if (attribute != model.attributes.end())
        attribute->second.indices.push_back(static_cast<quint32>(index));
}

void addFace(PlainModel &model, const std::vector<Corner> &corners, const QString &material)
{
    const auto face = static_cast<quint32>(model.cornerCounts.size());
    model.cornerCounts.push_back(static_cast<quint32>(corners.size()));
    for (const Corner &corner : corners) {
        addIndex(model, QStringLiteral("va_Vertex"), corner.v);
        addIndex(model, QStringLiteral("va_Normal"), corner.vn);
        addIndex(model, QStringLiteral("va_TexCoord"), corner.vt);
    }
    if (PlainGroup *group = model.group(material))
        group->faces.push_back(face);
}

/// A token that the line lacks reads as 0, or as an empty name.
QString token(const QStringList &tokens, int number)
{
    return tokens.value(number, QString(QLatin1String("")));
}

} // namespace

bool readOBJFile(const QString &fileName, PlainModel &model, QString &error)
{
    QFile file(fileName);
    if (!file.exists() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        error = QStringLiteral("Failed to load OBJ file '%1'").arg(fileName);
        return false;
    }
    model.groups.push_back({QStringLiteral("<default>"), defaultMaterial(), {}});
    QString material = QStringLiteral("<default>");
    LineCounts counts;
    QTextStream stream(&file);
    const QDir baseDir(QFileInfo(fileName).dir().absolutePath());

    while (!stream.atEnd()) {
        const QString line = stream.readLine();
        const QStringList tokens = line.split(QRegExp(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
        if (tokens.isEmpty() || tokens[0].startsWith(QLatin1Char('#')))
            continue;
        const QString &keyword = tokens[0];
        const bool isSound = stream.status() == QTextStream::Ok;
        if (keyword == QLatin1String("v")) {
            ++counts.v;
            if (isSound)
                addValue(model, QStringLiteral("va_Vertex"),
                         {token(tokens, 1).toFloat(), token(tokens, 2).toFloat(),
                          token(tokens, 3).toFloat()});
        } else if (keyword == QLatin1String("vn")) {
            ++counts.vn;
            if (isSound)
                addValue(model, QStringLiteral("va_Normal"),
                         {token(tokens, 1).toFloat(), token(tokens, 2).toFloat(),
                          token(tokens, 3).toFloat()});
        } else if (keyword == QLatin1String("vt")) {
            ++counts.vt;
            if (isSound)
                addValue(model, QStringLiteral("va_TexCoord"),
                         {token(tokens, 1).toFloat(), token(tokens, 2).toFloat()});
        } else if (keyword == QLatin1String("f")) {
            std::vector<Corner> corners;
            if (isSound && readCorners(tokens, counts, corners))
                addFace(model, corners, material);
        } else if (keyword == QLatin1String("usemtl")) {
            if (isSound)
                material = token(tokens, 1);
        } else if (keyword == QLatin1String("mtllib") && isSound) {
            QString path = token(tokens, 1);
            if (QDir::isRelativePath(path))
                path = baseDir.absoluteFilePath(path);
            if (!readMTLFile(path, model)) {
                error = QStringLiteral("Failed to load MTL file '%1'").arg(path);
                return false;
            }
        }
    }
    return true;
}

} // namespace OrvReference
