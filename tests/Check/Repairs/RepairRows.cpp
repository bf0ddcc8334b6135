#include "Check/Repairs/RepairRows.h"

#include "support/TemporaryModel.h"

#include "Check/Repairs/RepairProperties.h"
#include <OrvCheck/ModelRepair.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>

#include <set>

namespace OrvTest {

namespace {

using namespace Halvard::Orv;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const TemporaryModel &folder, const RowFile &file)
{
    const QString name = QString::fromUtf8(file.name);
    const QString path = folder.write(name, file.contents);
    if (!name.endsWith(QLatin1String(".png"), Qt::CaseInsensitive))
        return;
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::white);
    ASSERT_TRUE(image.save(path, "PNG"));
}

std::vector<std::string> told(const RepairResult &result)
{
    std::vector<std::string> lines;
    for (const RepairChange &change : result.changes)
        lines.push_back(QStringLiteral("%1:%2 %3 %4 %5")
                            .arg(QFileInfo(change.file).fileName(), QString::number(change.line),
                                 change.code, change.subject, QString::number(change.count))
                            .toStdString());
    return lines;
}

void expectRow(const RepairRow &row)
{
    const TemporaryModel folder;
    const QString model = folder.write(QStringLiteral("model.obj"), row.model);
    for (const RowFile &file : row.files)
        write(folder, file);
    const QString output = folder.path(QStringLiteral("fixed.obj"));
    RepairResult result;
    QString reason;
    ASSERT_EQ(repairModel(model, output, result, reason), RepairStatus::Done)
        << reason.toStdString();
    EXPECT_EQ(contents(output).toStdString(), row.fixed.toStdString());
    const QString library = folder.path(QStringLiteral("fixed.mtl"));
    EXPECT_EQ(QFile::exists(library), !row.library.isNull());
    EXPECT_EQ(contents(library).toStdString(), row.library.toStdString());
    EXPECT_EQ(told(result), row.changes);
    EXPECT_EQ(result.written.size(), row.library.isNull() ? 1 : 2);
    for (const std::string &broken : brokenPromises(model, folder.path(QStringLiteral("x.obj"))))
        ADD_FAILURE() << broken;
}

} // namespace

void expectRows(const std::vector<RepairRow> &rows)
{
    std::set<std::string> names;
    for (const RepairRow &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(names.insert(row.name).second) << "the name stands twice";
        expectRow(row);
    }
}

} // namespace OrvTest
