#include "FindingsModel.h"

#include "SeverityIcon.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

#include <algorithm>

namespace Halvard::Orv::Viewer {

FindingsModel::FindingsModel(QObject *parent)
    : QAbstractTableModel(parent), _findings(std::make_shared<ModelFindings>())
{}

void FindingsModel::setFindings(const std::shared_ptr<const ModelFindings> &findings)
{
    beginResetModel();
    _findings = findings ? findings : std::make_shared<ModelFindings>();
    endResetModel();
}

const Finding &FindingsModel::finding(int row) const
{
    return _findings->findings.at(row);
}

int FindingsModel::count(FindingSeverity severity) const
{
    return int(std::count_if(_findings->findings.begin(), _findings->findings.end(),
                             [severity](const Finding &f) { return f.severity == severity; }));
}

bool FindingsModel::hasFixable() const
{
    return std::any_of(_findings->findings.begin(), _findings->findings.end(),
                       [](const Finding &finding) { return finding.fixable; });
}

int FindingsModel::rowOf(const Finding &finding) const
{
    const auto found = std::find_if(
        _findings->findings.begin(), _findings->findings.end(), [&finding](const Finding &other) {
            return other.code == finding.code && other.subject == finding.subject &&
                   other.file == finding.file;
        });
    return found == _findings->findings.end() ? -1 : int(found - _findings->findings.begin());
}

int FindingsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : _findings->findings.size();
}

int FindingsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString FindingsModel::place(const Finding &finding) const
{
    const QString file =
        QDir(QFileInfo(_findings->file).absolutePath()).relativeFilePath(finding.file);
    return QStringLiteral("%1:%2").arg(printableText(file), QString::number(finding.line));
}

QString FindingsModel::text(int row, int column) const
{
    const Finding &shown = finding(row);
    switch (column) {
    case Severity:
        return severityName(shown.severity);
    case Place:
        return place(shown);
    case Message:
        return printableText(shown.message);
    case Faces:
        return shown.faces == 0 ? QString() : QLocale().toString(shown.faces);
    case Code:
        return shown.code;
    default:
        return {};
    }
}

QVariant FindingsModel::sortKey(int row, int column) const
{
    switch (column) {
    case Severity:
        return int(finding(row).severity);
    case Place:
        return row; // the check sorts them so
    case Faces:
        return finding(row).faces;
    default:
        return text(row, column);
    }
}

QVariant FindingsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return text(index.row(), index.column());
    case Qt::ToolTipRole:
        // Never markup, whatever the file holds.
        return QStringLiteral("<p>%1</p>")
            .arg(text(index.row(), index.column() == Place ? Place : Message).toHtmlEscaped());
    case Qt::DecorationRole:
        return index.column() == Severity ? severityIcon(finding(index.row()).severity)
                                          : QVariant();
    case Qt::TextAlignmentRole:
        return index.column() == Faces ? int(Qt::AlignRight | Qt::AlignVCenter)
                                       : int(Qt::AlignLeft | Qt::AlignVCenter);
    case SortRole:
        return sortKey(index.row(), index.column());
    default:
        return {};
    }
}

QVariant FindingsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int(section == Faces ? Qt::AlignRight | Qt::AlignVCenter
                                    : Qt::AlignLeft | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && section == Faces)
        return tr("Faces that are not drawn for this reason");
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Severity:
        return tr("Severity");
    case Place:
        return tr("Line");
    case Message:
        return tr("Message");
    case Faces:
        return tr("Lost");
    case Code:
        return tr("Code");
    default:
        return {};
    }
}

} // namespace Halvard::Orv::Viewer
