/// \file
/// The findings on a model as a table.
#pragma once

#include <OrvCheck/ModelCheck.h>

#include <QtCore/QAbstractTableModel>

#include <memory>

namespace Halvard::Orv::Viewer {

/// One row a finding, in the order of the check.
class FindingsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Severity,
        Place, ///< file and line, as seen from the model's folder
        Message,
        Faces, ///< that are not drawn
        Code,
        ColumnCount
    };

    /// What a column is sorted by.
    static constexpr int SortRole = Qt::UserRole;

    explicit FindingsModel(QObject *parent = nullptr);

    /// \param findings null for none.
    void setFindings(const std::shared_ptr<const ModelFindings> &findings);
    const Finding &finding(int row) const;
    int count(FindingSeverity severity) const;
    bool hasFixable() const;
    /// The row of the finding on the same thing, after another check; -1 where it is gone.
    int rowOf(const Finding &finding) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString text(int row, int column) const;
    QVariant sortKey(int row, int column) const;
    QString place(const Finding &finding) const;

    std::shared_ptr<const ModelFindings> _findings; // never null
};

} // namespace Halvard::Orv::Viewer
