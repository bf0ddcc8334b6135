/// \file
/// Which findings are listed.
#pragma once

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QSortFilterProxyModel>

namespace Halvard::Orv::Viewer {

class FindingsModel;

/// Passes findings of some severities with some text in their message, place or code.
class FindingsFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    /// \param model outlives it.
    FindingsFilter(FindingsModel &model, QObject *parent = nullptr);

    void setListed(FindingSeverity severity, bool isListed);
    /// \param text empty for all; the case of letters does not matter.
    void setText(const QString &text);

    const Finding &finding(const QModelIndex &index) const;

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    FindingsModel &_model;
    bool _isListed[3] = {true, true, true};
    QString _text;
};

} // namespace Halvard::Orv::Viewer
