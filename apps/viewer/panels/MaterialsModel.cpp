#include "MaterialsModel.h"

#include "MaterialIcon.h"

#include <common/PrintedName.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

namespace Halvard::Orv::Viewer {

namespace {

/// Its texture is named, but cannot be shown.
bool lacksTexture(const ModelDetails::Material &material)
{
    return !material.values.diffuseMap.path.isEmpty() && material.thumbnail.isNull();
}

QString textureName(const ModelDetails::Material &material)
{
    const QString path = material.values.diffuseMap.path;
    if (path.isEmpty())
        return {};
    const QString name = Apps::printed(QFileInfo(path).fileName());
    return lacksTexture(material) ? MaterialsModel::tr("%1 (cannot be shown)").arg(name) : name;
}

QString numbers(const QVector3D &values)
{
    return QStringLiteral("%1 %2 %3")
        .arg(double(values.x()), 0, 'g', 4)
        .arg(double(values.y()), 0, 'g', 4)
        .arg(double(values.z()), 0, 'g', 4);
}

/// All that is known of it; no markup of the file's.
QString toolTip(const ModelDetails::Material &material)
{
    const Render::Material &values = material.values;
    QStringList lines = {
        QStringLiteral("<b>%1</b>").arg(Apps::printed(material.name).toHtmlEscaped())};
    lines += MaterialsModel::tr("Diffuse %1").arg(numbers(values.diffuse));
    lines += MaterialsModel::tr("Specular %1, exponent %2")
                 .arg(numbers(values.specular), QString::number(double(values.shininess)));
    lines += MaterialsModel::tr("Opacity %1").arg(double(values.opacity));
    for (const Render::TextureReference &map : {values.diffuseMap, values.specularMap}) {
        if (!map.path.isEmpty())
            lines += Apps::printed(QDir::toNativeSeparators(map.path)).toHtmlEscaped();
    }
    return lines.join(QStringLiteral("<br>"));
}

} // namespace

MaterialsModel::MaterialsModel(QObject *parent)
    : QAbstractTableModel(parent), _details(std::make_shared<ModelDetails>())
{}

void MaterialsModel::setDetails(const std::shared_ptr<const ModelDetails> &details)
{
    beginResetModel();
    _details = details ? details : std::make_shared<ModelDetails>();
    endResetModel();
}

int MaterialsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(_details->materials.size());
}

int MaterialsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString MaterialsModel::text(const ModelDetails::Material &material, int column) const
{
    switch (column) {
    case Name:
        return Apps::printed(material.name);
    case Triangles:
        return QLocale().toString(qulonglong(material.triangles));
    case Texture:
        return textureName(material);
    default:
        return {};
    }
}

QVariant MaterialsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const ModelDetails::Material &material = _details->materials[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return text(material, index.column());
    case Qt::DecorationRole:
        return index.column() == Name ? materialIcon(material) : QVariant();
    case Qt::ToolTipRole:
        return toolTip(material);
    case Qt::TextAlignmentRole:
        return int((index.column() == Triangles ? Qt::AlignRight : Qt::AlignLeft) |
                   Qt::AlignVCenter);
    case SortRole:
        return index.column() == Triangles ? QVariant(qulonglong(material.triangles))
                                           : QVariant(text(material, index.column()));
    case NameRole:
        return material.name;
    default:
        return {};
    }
}

QVariant MaterialsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int((section == Triangles ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Material");
    case Triangles:
        return tr("Triangles");
    case Texture:
        return tr("Texture");
    default:
        return {};
    }
}

} // namespace Halvard::Orv::Viewer
