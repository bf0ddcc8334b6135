#include "reference/FileReading.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegExp>
#include <QtCore/QTextStream>

namespace OrvReference {

using namespace OrvTest;

namespace {

/// The line without its comment and the blanks around it; empty when nothing is left of it.
QString content(const QString &line)
{
    const int first = line.indexOf(QRegExp(QStringLiteral("\\S")));
    if (first < 0)
        return {};
    int hash = line.indexOf(QLatin1Char('#'));
    if (hash < 0)
        hash = line.size();
    if (hash <= first)
        return {};
    return line.mid(first, hash - first).trimmed();
}

int floatsOf(const QString &keyword)
{
    if (keyword == QLatin1String("Ka") || keyword == QLatin1String("Kd") ||
        keyword == QLatin1String("Ks"))
        return 3;
    if (keyword == QLatin1String("Ns") || keyword == QLatin1String("d"))
        return 1;
    return 0;
}

bool isMap(const QString &keyword)
{
    return keyword == QLatin1String("map_Kd") || keyword == QLatin1String("map_Ks") ||
           keyword == QLatin1String("map_Ka") || keyword == QLatin1String("map_Ns");
}

/// Reads the values of a line into a member, which is kept only when all could be read.
void readMember(QTextStream &values, const QString &keyword, const QDir &baseDir, Record &material)
{
    Member member;
    member.name = keyword;
    for (int i = 0; i < floatsOf(keyword); ++i) {
        float value = 0.0f;
        values >> value;
        member.bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
    }
    if (isMap(keyword)) {
        values >> member.path;
        if (QDir::isRelativePath(member.path))
            member.path = baseDir.absoluteFilePath(member.path);
    }
    if (values.status() == QTextStream::Ok)
        material.set(member);
}

void closeSection(PlainModel &model, const QString &name, const Record &material)
{
    if (!name.isNull() && !model.group(name))
        model.groups.push_back({name, material, {}});
}

} // namespace

bool readMTLFile(const QString &fileName, PlainModel &model)
{
    QFile file(fileName);
    if (!file.exists() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    const QDir baseDir(QFileInfo(fileName).dir().absolutePath());
    Record material{QStringLiteral("OBJMaterial"), {}};
    QString currentName;

    while (!stream.atEnd()) {
        QString line = content(stream.readLine());
        if (line.isEmpty())
            continue;
        QTextStream words(&line, QIODevice::ReadOnly);
        QString keyword;
        words >> keyword;
        if (keyword == QLatin1String("newmtl")) {
            QString name;
            words >> name;
            if (words.status() != QTextStream::Ok)
                continue;
            closeSection(model, currentName, material);
            const float opaque = 1.0f;
            material.members.clear();
            material.set({QStringLiteral("d"),
                          QByteArray(reinterpret_cast<const char *>(&opaque), sizeof opaque),
                          {},
                          false});
            currentName = name;
        } else if (floatsOf(keyword) > 0 || isMap(keyword)) {
            readMember(words, keyword, baseDir, material);
        }
    }
    closeSection(model, currentName, material);
    return true;
}

} // namespace OrvReference
