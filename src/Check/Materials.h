/// \file
/// The materials of a model, and the faces that use them.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QVector3D>

#include <vector>

namespace Halvard::Orv::Checking {

struct Material
{
    QString name;
    bool isDefined = false;         ///< By now, in the order of the file.
    QString library;                ///< That defines it, as the model names it.
    qint64 libraryLine = 0;         ///< Where the model names it.
    bool isNamedWhole = false;      ///< By a line whose name has no blank.
    bool hasMap = false;            ///< Its definition names a texture.
    qint64 drawnFaces = 0;          ///< Used when it was defined; they have triangles.
    qint64 lostFaces = 0;           ///< Used before it was defined; they would have triangles.
    QVector<QVector3D> lostCorners; ///< Of the first of these.
    qint64 earlyUses = 0; ///< "usemtl" lines that select it before it was defined, with faces.
    qint64 earlyLine = 0; ///< The first of them.
    bool lacksTexCoords = false; ///< Of a corner, at least.
};

/// Materials by name. Numbers stay the same.
class Materials
{
public:
    Materials()
    {
        Material &material = _materials[static_cast<size_t>(number(QStringLiteral("<default>")))];
        material.isDefined = true;
    }

    /// Number of the material of a name, which is made where there is none yet.
    int number(const QString &name)
    {
        const auto known = _numbers.constFind(name);
        if (known != _numbers.constEnd())
            return *known;
        const auto next = static_cast<int>(_materials.size());
        _numbers.insert(name, next);
        _materials.emplace_back();
        _materials.back().name = name;
        return next;
    }

    /// The material of a name, or null.
    const Material *find(const QString &name) const
    {
        const auto known = _numbers.constFind(name);
        return known == _numbers.constEnd() ? nullptr : &_materials[static_cast<size_t>(*known)];
    }

    Material &operator[](int number) { return _materials[static_cast<size_t>(number)]; }
    std::vector<Material> &all() { return _materials; }

private:
    std::vector<Material> _materials;
    QMap<QString, int> _numbers;
};

} // namespace Halvard::Orv::Checking
