/// \file
/// The materials of a model as a table.
#pragma once

#include "../LoadedFile.h"

#include <QtCore/QAbstractTableModel>

#include <memory>

namespace Halvard::Orv::Viewer {

/// One row a material that is drawn, in the order of the model.
class MaterialsModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        Name, ///< with a swatch of the colour, and the texture
        Triangles,
        Texture, ///< the diffuse one's name
        ColumnCount
    };

    /// What a column is sorted by.
    static constexpr int SortRole = Qt::UserRole;
    /// The material's name as the model has it.
    static constexpr int NameRole = Qt::UserRole + 1;

    explicit MaterialsModel(QObject *parent = nullptr);

    /// \param details null for none.
    void setDetails(const std::shared_ptr<const ModelDetails> &details);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString text(const ModelDetails::Material &material, int column) const;

    std::shared_ptr<const ModelDetails> _details; // never null
};

} // namespace Halvard::Orv::Viewer
