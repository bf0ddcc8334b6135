/// \file
/// Names of materials that the loader reads otherwise than they are written, and names for them
/// that it reads whole.
#pragma once

#include "NameSet.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Halvard::Orv::Checking {

/// Settles under which name each material goes from now on, in the model and in its libraries.
///
/// A name as written is the text after the keyword without blanks around it and with one blank
/// for several; the loader reads its first word. Names that are read whole stay.
///
///     newmtl red paint    usemtl red paint    ->  red_paint
///     newmtl red paint    usemtl red          ->  red_paint (the loader takes it for that)
///     newmtl red          usemtl red (worn)   ->  red
///     newmtl              usemtl              ->  unnamed
class MaterialNames
{
public:
    /// \name What is written, in the order of loading; to be told before settle()
    /// @{
    void addDefinition(const QString &written);
    void addUse(const QString &written);
    /// @}

    void settle();

    /// The name of a "newmtl" line, which is `written` itself where it stays.
    QString ofDefinition(const QString &written) const
    {
        return _definitions.value(written, written);
    }
    /// The name of a "usemtl" line.
    QString ofUse(const QString &written) const { return _uses.value(written, written); }

private:
    void take(const QString &written);
    QString settledUse(const QString &written);
    QString freshName(const QString &written);

    QStringList _definitionsInOrder;
    QStringList _usesInOrder;
    QMap<QString, QString> _definitions; // names by what is written
    QMap<QString, QString> _uses;
    QMap<QString, QString> _ofWords; // by the word that the loader reads: the first definition
    QMap<QString, QString> _fresh;   // new names by what is written
    NameSet _taken;
    QMap<QString, int> _numbers; // last one added to a name
};

/// Whether a "newmtl" line of that name defines it.
bool isDefinable(const QString &name);

/// The first word of a text.
QString firstWord(const QString &text);

} // namespace Halvard::Orv::Checking
