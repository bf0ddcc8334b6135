#include "ModelSummary.h"

#include "PrintedName.h"

#include <QtCore/QLocale>

namespace Halvard::Orv::Apps {

namespace {

/// Collects sections.
class Table
{
public:
    void heading(const QString &text) { _sections.push_back({text, {}}); }

    void row(int indent, const QString &label, const QString &value,
             const QString &remark = QString())
    {
        _sections.back().rows.push_back({indent, label, value, remark});
    }

    void row(int indent, const QString &label, qint64 value, const QString &remark = QString())
    {
        row(indent, label, grouped(value), remark);
    }

    void line(int indent, const QString &text) { row(indent, text, QString()); }

    static QString grouped(qint64 value) { return QLocale(QLocale::English).toString(value); }

    std::vector<SummarySection> takeSections() { return std::move(_sections); }

private:
    std::vector<SummarySection> _sections;
};

void addFaces(Table &table, const PreparationReport &report)
{
    // A mesh has a few; what is beyond is told in one line.
    constexpr int ShownAtMost = 8;
    const quint64 notDrawn = report.faces - report.facesDrawn;
    table.row(1, QStringLiteral("faces"), qint64(report.faces),
              notDrawn == 0 ? QString()
                            : QStringLiteral("%1 not drawn").arg(Table::grouped(qint64(notDrawn))));
    int shown = 0;
    quint64 rest = 0;
    for (auto it = report.facesByCornerCount.begin(); it != report.facesByCornerCount.end(); ++it) {
        if (shown++ < ShownAtMost)
            table.row(2,
                      it.key() == 1 ? QStringLiteral("of 1 corner")
                                    : QStringLiteral("of %1 corners").arg(it.key()),
                      qint64(it.value()));
        else
            rest += it.value();
    }
    if (rest > 0)
        table.row(2, QStringLiteral("of more corners"), qint64(rest),
                  QStringLiteral("up to %1").arg(report.facesByCornerCount.lastKey()));
    table.row(1, QStringLiteral("corners"), qint64(report.corners));
}

void addFile(Table &table, const ModelSummary &summary)
{
    const PreparationReport &report = summary.report;
    table.heading(QStringLiteral("In the file"));
    table.row(1, QStringLiteral("bytes"), summary.fileBytes);
    table.row(1, QStringLiteral("positions"), qint64(report.positions));
    table.row(1, QStringLiteral("normals"), qint64(report.normals),
              report.normals == 0 && summary.bundles > 0 ? QStringLiteral("generated") : QString());
    table.row(1, QStringLiteral("texture coordinates"), qint64(report.texCoords));
    addFaces(table, report);
}

void addGPU(Table &table, const ModelSummary &summary)
{
    const PreparationReport &report = summary.report;
    table.heading(QStringLiteral("On the GPU"));
    table.row(1, QStringLiteral("vertices before welding"), qint64(report.verticesBeforeWelding));
    table.row(1, QStringLiteral("vertices after welding"), qint64(report.vertices));
    table.row(1, QStringLiteral("triangles"), qint64(summary.triangles));
    table.row(1, QStringLiteral("bundles"), qint64(summary.bundles));
    table.row(1, QStringLiteral("draw commands"), qint64(summary.commands));
    table.row(1, QStringLiteral("bytes"), summary.gpuBytes.total());
    table.row(2, QStringLiteral("indices"), summary.gpuBytes.indices);
    for (const auto &attribute : summary.gpuBytes.attributes)
        table.row(2, attribute.first, attribute.second);
    table.row(2, QStringLiteral("draw commands"), summary.gpuBytes.commands);
}

void addMaterials(Table &table, const ModelSummary &summary)
{
    table.heading(QStringLiteral("Materials"));
    if (summary.materials.empty())
        table.line(1, QStringLiteral("none"));
    for (const ModelSummary::Material &material : summary.materials) {
        table.row(1, printed(material.name), qint64(material.triangles),
                  material.triangles == 1 ? QStringLiteral("triangle")
                                          : QStringLiteral("triangles"));
        for (const ModelSummary::Texture &texture : material.textures)
            table.line(2, QStringLiteral("%1  %2%3")
                              .arg(texture.member, printed(texture.path),
                                   texture.exists ? QString() : QStringLiteral("  (missing)")));
    }
}

void addBounds(Table &table, const ModelSummary &summary)
{
    table.heading(QStringLiteral("Bounding box"));
    if (summary.triangles == 0)
        return table.line(1, QStringLiteral("empty"));
    for (int axis = 0; axis < 3; ++axis)
        table.row(1, QString(QLatin1Char("xyz"[axis])),
                  QString::number(double(summary.minimum[axis])),
                  QStringLiteral("to %1").arg(double(summary.maximum[axis])));
}

void addTimes(Table &table, const ModelSummary &summary)
{
    const auto row = [&table](int indent, const QString &label, qint64 nanoseconds) {
        table.row(indent, label,
                  QLocale(QLocale::English).toString(double(nanoseconds) * 1e-6, 'f', 2));
    };
    const PreparationReport::Stages &stages = summary.report.stages;
    table.heading(QStringLiteral("Milliseconds"));
    row(1, QStringLiteral("total"), summary.nanoseconds);
    row(2, QStringLiteral("reading"), stages.read);
    row(2, QStringLiteral("welding"), stages.weld);
    row(2, QStringLiteral("triangulating"), stages.triangulate);
    row(2, QStringLiteral("normals"), stages.normals);
    row(2, QStringLiteral("other"), summary.otherNanoseconds());
}

/// A label and a right-aligned value. All columns are as wide everywhere, so that the sections line
/// up.
QString lineOf(const SummaryRow &row)
{
    constexpr int LabelWidth = 26;
    constexpr int ValueWidth = 14;
    const QString shifted = QString(2 * row.indent, QLatin1Char(' ')) + row.label;
    if (row.value.isEmpty())
        return shifted;
    const QString line = shifted.leftJustified(LabelWidth) + row.value.rightJustified(ValueWidth);
    return row.remark.isEmpty() ? line : line + QLatin1String("  ") + row.remark;
}

} // namespace

std::vector<SummarySection> summarySections(const ModelSummary &summary)
{
    Table table;
    addFile(table, summary);
    addGPU(table, summary);
    addMaterials(table, summary);
    addBounds(table, summary);
    addTimes(table, summary);
    return table.takeSections();
}

QString summaryText(const ModelSummary &summary)
{
    QString text = printed(summary.fileName) + QLatin1Char('\n');
    for (const SummarySection &section : summarySections(summary)) {
        text += QLatin1Char('\n') + section.heading + QLatin1Char('\n');
        for (const SummaryRow &row : section.rows)
            text += lineOf(row) + QLatin1Char('\n');
    }
    return text;
}

} // namespace Halvard::Orv::Apps
