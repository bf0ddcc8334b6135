#include "FindingsFilter.h"

#include "FindingsModel.h"

namespace Halvard::Orv::Viewer {

FindingsFilter::FindingsFilter(FindingsModel &model, QObject *parent)
    : QSortFilterProxyModel(parent), _model(model)
{
    setSourceModel(&model);
    setSortRole(FindingsModel::SortRole);
    setSortCaseSensitivity(Qt::CaseInsensitive);
}

void FindingsFilter::setListed(FindingSeverity severity, bool isListed)
{
    _isListed[int(severity)] = isListed;
    invalidateFilter();
}

void FindingsFilter::setText(const QString &text)
{
    _text = text;
    invalidateFilter();
}

const Finding &FindingsFilter::finding(const QModelIndex &index) const
{
    return _model.finding(mapToSource(index).row());
}

bool FindingsFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    if (!_isListed[int(_model.finding(row).severity)])
        return false;
    for (const int column : {FindingsModel::Message, FindingsModel::Place, FindingsModel::Code}) {
        const QString cell = _model.index(row, column, parent).data().toString();
        if (cell.contains(_text, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace Halvard::Orv::Viewer
