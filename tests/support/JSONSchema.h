/// \file
/// JSON documents against the schemas that docs/schemas/ publishes.
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include <string>
#include <vector>

namespace OrvTest {

/// A JSON Schema, as far as this project's use it: "$ref" to "$defs", "anyOf", "const", "enum",
/// "type", "minimum", "pattern", "required", "properties", "items", "minItems", "maxItems". Any
/// other keyword that restricts documents is itself a violation: it would go unchecked.
class JSONSchema
{
public:
    /// Fails the test where the file is no JSON object.
    explicit JSONSchema(const QString &fileName);

    /// Where a document breaks the schema, in words; empty where it does not.
    std::vector<std::string> violations(const QJsonValue &document) const;

private:
    QJsonObject _root;
};

} // namespace OrvTest
