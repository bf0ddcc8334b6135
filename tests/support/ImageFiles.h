/// \file
/// Images as the bytes of a file.
#pragma once

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QByteArray>
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

} // namespace OrvTest
