#include "support/JSONSchema.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

#include <cmath>

namespace OrvTest {

namespace {

bool isOfType(const QJsonValue &value, const QString &type)
{
    if (type == QLatin1String("integer"))
        return value.isDouble() && std::floor(value.toDouble()) == value.toDouble();
    return (type == QLatin1String("object") && value.isObject()) ||
           (type == QLatin1String("array") && value.isArray()) ||
           (type == QLatin1String("string") && value.isString()) ||
           (type == QLatin1String("number") && value.isDouble()) ||
           (type == QLatin1String("boolean") && value.isBool());
}

class Validation
{
public:
    explicit Validation(const QJsonObject &root) : _root(root) {}

    void check(const QJsonValue &value, const QJsonObject &schema, const QString &path)
    {
        for (auto it = schema.begin(); it != schema.end(); ++it)
            checkKeyword(value, it.key(), it.value(), path);
    }

    std::vector<std::string> violations;

private:
    void expect(bool isTrue, const QString &path, const QString &keyword)
    {
        if (!isTrue)
            violations.push_back((path + QStringLiteral(" breaks ") + keyword).toStdString());
    }

    void checkKeyword(const QJsonValue &value, const QString &keyword, const QJsonValue &rule,
                      const QString &path)
    {
        static const QSet<QString> descriptive{QStringLiteral("$schema"), QStringLiteral("$defs"),
                                               QStringLiteral("title"),
                                               QStringLiteral("description")};
        if (descriptive.contains(keyword))
            return;
        if (keyword == QLatin1String("$ref"))
            check(value, referred(rule.toString()), path);
        else if (keyword == QLatin1String("anyOf"))
            expect(isAnyOf(value, rule.toArray(), path), path, keyword);
        else if (keyword == QLatin1String("const"))
            expect(value == rule, path, keyword);
        else if (keyword == QLatin1String("enum"))
            expect(rule.toArray().contains(value), path, keyword);
        else if (keyword == QLatin1String("type"))
            expect(isOfType(value, rule.toString()), path, keyword);
        else if (keyword == QLatin1String("minimum"))
            expect(value.toDouble() >= rule.toDouble(), path, keyword);
        else if (keyword == QLatin1String("pattern"))
            expect(QRegularExpression(rule.toString()).match(value.toString()).hasMatch(), path,
                   keyword);
        else if (keyword == QLatin1String("minItems"))
            expect(value.toArray().size() >= rule.toInt(), path, keyword);
        else if (keyword == QLatin1String("maxItems"))
            expect(value.toArray().size() <= rule.toInt(), path, keyword);
        else if (keyword == QLatin1String("required"))
            checkRequired(value.toObject(), rule.toArray(), path);
        else if (keyword == QLatin1String("properties"))
            checkProperties(value.toObject(), rule.toObject(), path);
        else if (keyword == QLatin1String("items"))
            checkItems(value.toArray(), rule.toObject(), path);
        else
            expect(false, path, keyword + QStringLiteral(", which this test does not know"));
    }

    QJsonObject referred(const QString &reference) const
    {
        const QString name = reference.mid(QStringLiteral("#/$defs/").size());
        const QJsonObject definitions = _root.value(QStringLiteral("$defs")).toObject();
        EXPECT_TRUE(definitions.contains(name)) << reference.toStdString();
        return definitions.value(name).toObject();
    }

    bool isAnyOf(const QJsonValue &value, const QJsonArray &schemas, const QString &path) const
    {
        for (const QJsonValue &schema : schemas) {
            Validation attempt(_root);
            attempt.check(value, schema.toObject(), path);
            if (attempt.violations.empty())
                return true;
        }
        return false;
    }

    void checkRequired(const QJsonObject &object, const QJsonArray &names, const QString &path)
    {
        for (const QJsonValue &name : names)
            expect(object.contains(name.toString()), path,
                   QStringLiteral("required ") + name.toString());
    }

    void checkProperties(const QJsonObject &object, const QJsonObject &schemas, const QString &path)
    {
        for (auto it = schemas.begin(); it != schemas.end(); ++it) {
            if (object.contains(it.key()))
                check(object.value(it.key()), it.value().toObject(),
                      path + QLatin1Char('.') + it.key());
        }
    }

    void checkItems(const QJsonArray &array, const QJsonObject &schema, const QString &path)
    {
        for (int i = 0; i < array.size(); ++i)
            check(array.at(i), schema, path + QStringLiteral("[%1]").arg(i));
    }

    const QJsonObject &_root;
};

} // namespace

JSONSchema::JSONSchema(const QString &fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName.toStdString();
    _root = QJsonDocument::fromJson(file.readAll()).object();
    EXPECT_FALSE(_root.isEmpty()) << fileName.toStdString() << " is no JSON object";
}

std::vector<std::string> JSONSchema::violations(const QJsonValue &document) const
{
    Validation validation(_root);
    validation.check(document, _root, QStringLiteral("$"));
    return validation.violations;
}

} // namespace OrvTest
