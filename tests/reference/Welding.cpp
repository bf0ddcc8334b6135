#include "reference/Welding.h"

#include <cstring>

namespace OrvReference {

using namespace OrvTest;

namespace {

/// The value of an attribute at a corner.
std::vector<float> valueAt(const PlainAttribute &attribute, std::size_t corner)
{
    const auto components = static_cast<std::size_t>(attribute.components);
    std::vector<float> value(components, 0.0f);
    if (corner >= attribute.indices.size())
        return value;
    const std::size_t index = attribute.indices[corner];
    if (index >= attribute.values.size() / components)
        return value;
    for (std::size_t i = 0; i < components; ++i)
        value[i] = attribute.values[index * components + i];
    return value;
}

std::vector<quint32> bitsOf(const std::vector<float> &values)
{
    std::vector<quint32> bits(values.size());
    if (!values.empty())
        std::memcpy(bits.data(), values.data(), values.size() * sizeof(float));
    return bits;
}

} // namespace

WeldedModel weld(const PlainModel &model)
{
    WeldedModel welded;
    for (const quint32 corners : model.cornerCounts)
        welded.cornerCount += static_cast<int>(corners);

    std::map<std::vector<quint32>, quint32> numbers;
    for (int corner = 0; corner < welded.cornerCount; ++corner) {
        std::vector<float> row;
        for (const auto &[name, attribute] : model.attributes) {
            const auto value = valueAt(attribute, static_cast<std::size_t>(corner));
            row.insert(row.end(), value.begin(), value.end());
        }
        const auto [entry, isNew] =
            numbers.insert({bitsOf(row), static_cast<quint32>(numbers.size())});
        welded.indices.push_back(entry->second);
        if (!isNew)
            continue;
        for (const auto &[name, attribute] : model.attributes) {
            const auto value = valueAt(attribute, static_cast<std::size_t>(corner));
            std::vector<float> &values = welded.values[name];
            values.insert(values.end(), value.begin(), value.end());
        }
    }
    welded.vertexCount = static_cast<int>(numbers.size());
    return welded;
}

} // namespace OrvReference
