#include "support/MessageCapture.h"

#include <orv/JSONWriter.h>

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <cmath>
#include <limits>

namespace {

using Halvard::Orv::Cli::JSONWriter;

/// What the calls in `write` make.
template <typename Write>
std::string written(Write &&write)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    JSONWriter json(buffer);
    write(json);
    EXPECT_TRUE(json.finish());
    return buffer.data().toStdString();
}

std::string writtenFloat(float value)
{
    return written([value](JSONWriter &json) { json.value(value); });
}

TEST(JSONWriterTest, IndentsObjectsAndArrays)
{
    const std::string text = written([](JSONWriter &json) {
        json.beginObject();
        json.key("empty");
        json.beginArray();
        json.endArray();
        json.key("none");
        json.beginObject();
        json.endObject();
        json.key("pairs");
        json.beginArray(2);
        for (int i = 0; i < 5; ++i)
            json.value(i);
        json.endArray();
        json.key("line");
        json.beginArray(JSONWriter::OneLine);
        json.value(true);
        json.value(false);
        json.null();
        json.endArray();
        json.endObject();
    });
    EXPECT_EQ(text, "{\n"
                    "  \"empty\": [],\n"
                    "  \"none\": {},\n"
                    "  \"pairs\": [\n"
                    "    0, 1,\n"
                    "    2, 3,\n"
                    "    4\n"
                    "  ],\n"
                    "  \"line\": [true, false, null]\n"
                    "}\n");
}

TEST(JSONWriterTest, FloatsAreTheShortestThatReadBack)
{
    EXPECT_EQ(writtenFloat(0.7f), "0.7\n");
    EXPECT_EQ(writtenFloat(1.0f), "1\n");
    EXPECT_EQ(writtenFloat(1.0f / 3), "0.33333334\n"); // nine digits would do as well
    EXPECT_EQ(writtenFloat(16777216.0f), "16777216\n");
    EXPECT_EQ(writtenFloat(0.0f), "0\n");
    EXPECT_EQ(writtenFloat(-0.0f), "-0\n");
    EXPECT_EQ(writtenFloat(std::numeric_limits<float>::denorm_min()), "1e-45\n");
}

TEST(JSONWriterTest, WhatJSONHasNoNumberForIsAString)
{
    EXPECT_EQ(writtenFloat(std::nanf("")), "\"nan\"\n");
    EXPECT_EQ(writtenFloat(-std::nanf("")), "\"nan\"\n");
    EXPECT_EQ(writtenFloat(INFINITY), "\"inf\"\n");
    EXPECT_EQ(writtenFloat(-INFINITY), "\"-inf\"\n");
}

TEST(JSONWriterTest, IntegersAreWhole)
{
    EXPECT_EQ(written([](JSONWriter &json) { json.value(std::numeric_limits<quint64>::max()); }),
              "18446744073709551615\n");
    EXPECT_EQ(written([](JSONWriter &json) { json.value(std::numeric_limits<qint64>::min()); }),
              "-9223372036854775808\n");
}

TEST(JSONWriterTest, StringsAreEscaped)
{
    EXPECT_EQ(written([](JSONWriter &json) {
                  json.value(QStringLiteral("a\"b\\c\n\u0001\u00e9\u6a21/"));
              }),
              "\"a\\\"b\\\\c\\u000a\\u0001\xc3\xa9\xe6\xa8\xa1/\"\n");
}

TEST(JSONWriterTest, LongDocumentsComeOutWhole)
{
    constexpr int Count = 100000;
    const std::string text = written([](JSONWriter &json) {
        json.beginArray(7);
        for (int i = 0; i < Count; ++i)
            json.value(i);
        json.endArray();
    });
    const QJsonArray numbers = QJsonDocument::fromJson(QByteArray::fromStdString(text)).array();
    ASSERT_EQ(numbers.size(), Count);
    for (int i = 0; i < Count; ++i)
        ASSERT_EQ(numbers[i].toInt(-1), i);
}

TEST(JSONWriterTest, AFailingDeviceIsNoticed)
{
    const OrvTest::MessageCapture warningsOfQt;
    QBuffer notOpen;
    JSONWriter json(notOpen);
    json.value(1);
    EXPECT_FALSE(json.finish());
}

} // namespace
