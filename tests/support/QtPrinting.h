/// \file
/// How GoogleTest shows Qt values. Include it in every test file that compares
/// them: all files of one program must see the same printers.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <ostream>

QT_BEGIN_NAMESPACE

inline void PrintTo(const QString &text, std::ostream *stream)
{
    if (text.isNull())
        *stream << "(null)";
    else
        *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray &bytes, std::ostream *stream)
{
    *stream << "0x" << bytes.toHex().toStdString();
}

QT_END_NAMESPACE
