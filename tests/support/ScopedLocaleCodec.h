/// \file
/// A locale of another encoding.
#pragma once

#include <gtest/gtest.h>

#include <QtCore/QTextCodec>

namespace OrvTest {

/// Sets the codec of the locale while it lives.
class ScopedLocaleCodec
{
public:
    explicit ScopedLocaleCodec(const char *name) : _before(QTextCodec::codecForLocale())
    {
        QTextCodec *const codec = QTextCodec::codecForName(name);
        EXPECT_TRUE(codec) << name;
        QTextCodec::setCodecForLocale(codec);
    }
    ~ScopedLocaleCodec() { QTextCodec::setCodecForLocale(_before); }
    ScopedLocaleCodec(const ScopedLocaleCodec &) = delete;
    ScopedLocaleCodec &operator=(const ScopedLocaleCodec &) = delete;

private:
    QTextCodec *_before;
};

} // namespace OrvTest
