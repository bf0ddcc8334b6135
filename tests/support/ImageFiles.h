/// \file
/// Images as the bytes of files, and the numbers in them.
#pragma once

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QByteArray>
#include <QtCore/QtEndian>
#include <QtGui/QImage>

namespace OrvTest {

/// \param format "PNG", "BMP" and so on; one that Qt cannot write fails the test.
inline QByteArray encoded(const QImage &image, const char *format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, format)) << format;
    return buffer.data();
}

/// The bytes of a number, the highest first.
template <typename Number>
QByteArray bigEndian(Number number)
{
    const Number swapped = qToBigEndian(number);
    return QByteArray(reinterpret_cast<const char *>(&swapped), sizeof swapped);
}

/// The bytes of a number, the lowest first.
template <typename Number>
QByteArray littleEndian(Number number)
{
    const Number swapped = qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char *>(&swapped), sizeof swapped);
}

} // namespace OrvTest
