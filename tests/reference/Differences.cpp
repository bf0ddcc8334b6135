#include "reference/Differences.h"

#include <cmath>
#include <cstring>
#include <sstream>

namespace OrvReference {

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

std::string shownFloat(quint32 bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    std::ostringstream text;
    text.precision(9);
    text << value << " (0x" << std::hex << bits << ')';
    return text.str();
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

    void add(const std::string &what, const std::string &expected, const std::string &actual)
    {
        lines.push_back(what + ": expected " + expected + ", got " + actual);
    }

    std::vector<std::string> lines;
};

void compareIndices(Report &report, const std::vector<quint32> &expected,
                    const std::vector<quint32> &actual)
{
    report.compare("number of indices", expected.size(), actual.size());
    int named = 0;
    for (std::size_t i = 0; i < std::min(expected.size(), actual.size()) && named < Shown; ++i) {
        if (expected[i] == actual[i])
            continue;
        report.compare("index " + shown(i), expected[i], actual[i]);
        ++named;
    }
}

std::vector<quint32> words(const QByteArray &bytes)
{
    std::vector<quint32> result(static_cast<std::size_t>(bytes.size()) / sizeof(quint32));
    if (!result.empty())
        std::memcpy(result.data(), bytes.constData(), result.size() * sizeof(quint32));
    return result;
}

bool isNaN(quint32 bits)
{
    return (bits & 0x7fffffffu) > 0x7f800000u;
}

void compareFloats(Report &report, const std::string &what, const QByteArray &expectedBytes,
                   const QByteArray &actualBytes, bool anyNaN)
{
    report.compare(what + ": bytes", expectedBytes.size(), actualBytes.size());
    const std::vector<quint32> expected = words(expectedBytes);
    const std::vector<quint32> actual = words(actualBytes);
    int named = 0;
    for (std::size_t i = 0; i < std::min(expected.size(), actual.size()) && named < Shown; ++i) {
        if (expected[i] == actual[i] || (anyNaN && isNaN(expected[i]) && isNaN(actual[i])))
            continue;
        report.add(what + ", value " + shown(i), shownFloat(expected[i]), shownFloat(actual[i]));
        ++named;
    }
}

void compareAttributes(Report &report, const Bundle &expected, const Bundle &actual,
                       bool hasGeneratedNormals)
{
    for (const auto &[name, buffer] : actual.attributes) {
        if (expected.attributes.count(name) == 0)
            report.add("attribute " + shown(name), "none", "one");
    }
    for (const auto &[name, buffer] : expected.attributes) {
        const std::string what = "attribute " + shown(name);
        const auto found = actual.attributes.find(name);
        if (found == actual.attributes.end()) {
            report.add(what, "one", "none");
            continue;
        }
        report.compare(what + ": components", buffer.components, found->second.components);
        report.compare(what + ": type", buffer.type, found->second.type);
        compareFloats(report, what, buffer.bytes, found->second.bytes,
                      hasGeneratedNormals && name == QLatin1String("va_Normal"));
    }
}

void compareCommands(Report &report, const std::vector<Command> &expected,
                     const std::vector<Command> &actual)
{
    report.compare("number of commands", expected.size(), actual.size());
    for (std::size_t i = 0; i < std::min(expected.size(), actual.size()); ++i) {
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

void compareRecord(Report &report, const std::string &what, const Record &expected,
                   const Record &actual)
{
    report.compare(what + ": plan", expected.plan, actual.plan);
    report.compare(what + ": members", expected.members.size(), actual.members.size());
    for (std::size_t i = 0; i < std::min(expected.members.size(), actual.members.size()); ++i) {
        const Member &first = expected.members[i];
        const Member &second = actual.members[i];
        const std::string member = what + ", member " + shown(i);
        report.compare(member + ": name", first.name, second.name);
        report.compare(member + ": texture", first.isTexture, second.isTexture);
        report.compare(member + ": path", first.path, second.path);
        compareFloats(report, member, first.bytes, second.bytes, false);
    }
}

void compareCollection(Report &report, const std::string &what, const Collection &expected,
                       const Collection &actual)
{
    report.compare(what + ": present", expected.isPresent, actual.isPresent);
    report.compare(what + ": name", expected.name, actual.name);
    report.compare(what + ": records", expected.records.size(), actual.records.size());
    for (std::size_t i = 0; i < std::min(expected.records.size(), actual.records.size()); ++i)
        compareRecord(report, what + ", record " + shown(i), expected.records[i],
                      actual.records[i]);
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
    compareIndices(report, expected.indices, actual.indices);
    compareAttributes(report, expected, actual, hasGeneratedNormals);
    compareCollection(report, "materials", expected.materials, actual.materials);
    compareCollection(report, "instances", expected.instances, actual.instances);
}

void compareMessages(Report &report, const std::vector<OrvTest::Message> &expected,
                     const std::vector<OrvTest::Message> &actual)
{
    report.compare("number of messages", expected.size(), actual.size());
    int named = 0;
    for (std::size_t i = 0; i < std::max(expected.size(), actual.size()) && named < Shown; ++i) {
        std::ostringstream first;
        std::ostringstream second;
        if (i < expected.size())
            first << expected[i];
        if (i < actual.size())
            second << actual[i];
        if (first.str() == second.str())
            continue;
        report.add("message " + shown(i), first.str(), second.str());
        ++named;
    }
}

} // namespace

std::vector<std::string> differences(const UploadedModel &expected, const UploadedModel &actual)
{
    Report report;
    report.compare("null", expected.isNull, actual.isNull);
    report.compare("error", expected.error, actual.error);
    report.compare("number of bundles", expected.bundles.size(), actual.bundles.size());
    for (std::size_t i = 0; i < std::min(expected.bundles.size(), actual.bundles.size()); ++i)
        compareBundle(report, expected.bundles[i], actual.bundles[i], expected.hasGeneratedNormals);
    compareMessages(report, expected.messages, actual.messages);
    return report.lines;
}

} // namespace OrvReference
