#include "support/ModelDifferences.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

namespace OrvTest {

namespace {

/// Of one array, so many elements are named.
constexpr int Shown = 4;

std::string shown(const QString &text)
{
    return text.isNull() ? std::string("(null)") : '"' + text.toStdString() + '"';
}

std::string shown(bool value)
{
    return value ? "true" : "false";
}

template <typename Number>
std::string shown(Number value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

quint32 bitsOf(float value)
{
    quint32 bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Hexadecimal, so that every bit shows, and as a reader knows it.
std::string shown(float value)
{
    std::ostringstream text;
    if (std::isnan(value)) {
        text << "nan (bits 0x" << std::hex << bitsOf(value) << ')';
    } else {
        text << std::hexfloat << value << std::defaultfloat;
        text.precision(9);
        text << " (" << value << ')';
    }
    return text.str();
}

std::string shown(const Message &message)
{
    std::ostringstream text;
    text << message;
    return text.str();
}

template <typename List>
std::size_t commonSize(const List &first, const List &second)
{
    return std::min(first.size(), second.size());
}

/// Collects the differences, with the place where each was found.
class Report
{
public:
    template <typename Value>
    void compare(const std::string &what, const Value &expected, const Value &actual)
    {
        if (!(expected == actual))
            add(what, shown(expected), shown(actual));
    }

    /// A null text and an empty one are not the same.
    void compare(const std::string &what, const QString &expected, const QString &actual)
    {
        if (expected != actual || expected.isNull() != actual.isNull())
            add(what, shown(expected), shown(actual));
    }

    /// The length, and the first numbers that differ.
    void compareNumbers(const std::string &what, const std::vector<quint32> &expected,
                        const std::vector<quint32> &actual)
    {
        compare("number of " + what, expected.size(), actual.size());
        int named = 0;
        for (std::size_t i = 0; i < commonSize(expected, actual) && named < Shown; ++i) {
            if (expected[i] == actual[i])
                continue;
            add(what + ' ' + shown(i), shown(expected[i]), shown(actual[i]));
            ++named;
        }
    }

    /// The same of values of some components each; `element` is what such a value is.
    void compareFloats(const std::string &what, const char *element, int components,
                       const std::vector<float> &expected, const std::vector<float> &actual,
                       bool anyNaN = false)
    {
        compare(what + ": number of floats", expected.size(), actual.size());
        const auto size = static_cast<std::size_t>(std::max(components, 1));
        int named = 0;
        for (std::size_t i = 0; i < commonSize(expected, actual) && named < Shown; ++i) {
            const bool areNaN = std::isnan(expected[i]) && std::isnan(actual[i]);
            if (bitsOf(expected[i]) == bitsOf(actual[i]) || (anyNaN && areNaN))
                continue;
            add(what + ", " + element + ' ' + shown(i / size) + ", component " + shown(i % size),
                shown(expected[i]), shown(actual[i]));
            ++named;
        }
    }

    /// Calls `compareValues` for the names that both have.
    template <typename Map, typename Compare>
    void compareByName(const Map &expected, const Map &actual, const Compare &compareValues)
    {
        for (const auto &[name, value] : actual) {
            if (expected.count(name) == 0)
                add("attribute " + shown(name), "none", "one");
        }
        for (const auto &[name, value] : expected) {
            const std::string what = "attribute " + shown(name);
            const auto found = actual.find(name);
            if (found == actual.end())
                add(what, "one", "none");
            else
                compareValues(what, name, value, found->second);
        }
    }

    void add(const std::string &what, const std::string &expected, const std::string &actual)
    {
        lines.push_back(what + ": expected " + expected + ", got " + actual);
    }

    std::vector<std::string> lines;
};

void compareMember(Report &report, const std::string &what, const Member &expected,
                   const Member &actual)
{
    report.compare(what + ": name", expected.name, actual.name);
    report.compare(what + ": texture", expected.isTexture, actual.isTexture);
    report.compare(what + ": path", expected.path, actual.path);
    report.compare(what + ": bytes", expected.bytes.size(), actual.bytes.size());
    const std::size_t before = report.lines.size();
    report.compareFloats(what, "value", 1, expected.floats(), actual.floats());
    if (report.lines.size() == before && expected.bytes != actual.bytes)
        report.add(what, expected.bytes.toHex().toStdString(), actual.bytes.toHex().toStdString());
}

void compareRecord(Report &report, const std::string &what, const Record &expected,
                   const Record &actual)
{
    report.compare(what + ": plan", expected.plan, actual.plan);
    report.compare(what + ": number of members", expected.members.size(), actual.members.size());
    for (std::size_t i = 0; i < commonSize(expected.members, actual.members); ++i)
        compareMember(report, what + ", member " + shown(expected.members[i].name),
                      expected.members[i], actual.members[i]);
}

void compareCollection(Report &report, const std::string &what, const Collection &expected,
                       const Collection &actual)
{
    report.compare(what + ": present", expected.isPresent, actual.isPresent);
    report.compare(what + ": name", expected.name, actual.name);
    report.compare(what + ": records", expected.records.size(), actual.records.size());
    for (std::size_t i = 0; i < commonSize(expected.records, actual.records); ++i)
        compareRecord(report, what + ", record " + shown(i), expected.records[i],
                      actual.records[i]);
}

void compareCommands(Report &report, const std::vector<Command> &expected,
                     const std::vector<Command> &actual)
{
    report.compare("number of commands", expected.size(), actual.size());
    for (std::size_t i = 0; i < commonSize(expected, actual); ++i) {
        const std::string what = "command " + shown(i) + ": ";
        const Command &first = expected[i];
        const Command &second = actual[i];
        report.compare(what + "count", first.count, second.count);
        report.compare(what + "instanceCount", first.instanceCount, second.instanceCount);
        report.compare(what + "firstIndex", first.firstIndex, second.firstIndex);
        report.compare(what + "baseVertex", first.baseVertex, second.baseVertex);
        report.compare(what + "baseInstance", first.baseInstance, second.baseInstance);
        report.compare(what + "material", first.material, second.material);
        report.compare(what + "object", first.object, second.object);
    }
}

void compareBundle(Report &report, const Bundle &expected, const Bundle &actual,
                   bool hasGeneratedNormals)
{
    report.compare("key", expected.key, actual.key);
    report.compare("instance count", expected.instanceCount, actual.instanceCount);
    report.compare("primitive type", expected.primitiveType, actual.primitiveType);
    report.compare("vertex count", expected.vertexCount, actual.vertexCount);
    report.compare("index type", expected.indexType, actual.indexType);
    compareCommands(report, expected.commands, actual.commands);
    report.compareNumbers("index", expected.indices, actual.indices);
    report.compareByName(
        expected.attributes, actual.attributes,
        [&](const std::string &what, const QString &name, const VertexBuffer &first,
            const VertexBuffer &second) {
            report.compare(what + ": components", first.components, second.components);
            report.compare(what + ": type", first.type, second.type);
            report.compareFloats(what, "vertex", first.components, first.values, second.values,
                                 hasGeneratedNormals && name == QLatin1String("va_Normal"));
        });
    compareCollection(report, "materials", expected.materials, actual.materials);
    compareCollection(report, "instances", expected.instances, actual.instances);
}

void compareMessages(Report &report, const std::vector<Message> &expected,
                     const std::vector<Message> &actual)
{
    report.compare("number of messages", expected.size(), actual.size());
    int named = 0;
    for (std::size_t i = 0; i < std::max(expected.size(), actual.size()) && named < Shown; ++i) {
        const std::string first = i < expected.size() ? shown(expected[i]) : "none";
        const std::string second = i < actual.size() ? shown(actual[i]) : "none";
        if (first == second)
            continue;
        report.add("message " + shown(i), first, second);
        ++named;
    }
}

} // namespace

std::vector<std::string> differences(const PlainModel &expected, const PlainModel &actual)
{
    Report report;
    report.compareNumbers("corner count", expected.cornerCounts, actual.cornerCounts);
    report.compareByName(
        expected.attributes, actual.attributes,
        [&](const std::string &what, const QString &, const PlainAttribute &first,
            const PlainAttribute &second) {
            report.compare(what + ": components", first.components, second.components);
            report.compareFloats(what, "value", first.components, first.values, second.values);
            report.compareNumbers(what + ", index", first.indices, second.indices);
        });
    report.compare("number of groups", expected.groups.size(), actual.groups.size());
    for (std::size_t i = 0; i < commonSize(expected.groups, actual.groups); ++i) {
        const std::string what = "group " + shown(i);
        report.compare(what + ": name", expected.groups[i].name, actual.groups[i].name);
        report.compareNumbers(what + ", face", expected.groups[i].faces, actual.groups[i].faces);
        compareRecord(report, what, expected.groups[i].material, actual.groups[i].material);
    }
    return report.lines;
}

std::vector<std::string> differences(const UploadedModel &expected, const UploadedModel &actual)
{
    Report report;
    report.compare("null", expected.isNull, actual.isNull);
    report.compare("error", expected.error, actual.error);
    report.compare("number of bundles", expected.bundles.size(), actual.bundles.size());
    for (std::size_t i = 0; i < commonSize(expected.bundles, actual.bundles); ++i)
        compareBundle(report, expected.bundles[i], actual.bundles[i], expected.hasGeneratedNormals);
    compareMessages(report, expected.messages, actual.messages);
    return report.lines;
}

} // namespace OrvTest
