/// \file
/// Stream contents as plain vectors, and a comparison of floats by their bits.
#pragma once

#include <OrvModel/ModelDataStream.h>

#include <gmock/gmock.h>

#include <QtCore/QSharedPointer>

#include <cstdint>
#include <cstring>
#include <vector>

namespace OrvTest {

/// The elements of a stream, which must be of as many bytes as `T`. A null
/// stream fails the test and gives none.
template <typename T>
std::vector<T> elements(const QSharedPointer<Halvard::Orv::ModelDataStream> &stream)
{
    if (!stream) {
        ADD_FAILURE() << "null stream";
        return {};
    }
    std::vector<T> values(stream->size());
    if (values.size() * sizeof(T) != stream->byteCount()) {
        ADD_FAILURE() << values.size() << " elements in " << stream->byteCount() << " bytes";
        return {};
    }
    if (!values.empty())
        std::memcpy(values.data(), stream->data(0), stream->byteCount());
    return values;
}

inline std::vector<float> floats(const QSharedPointer<Halvard::Orv::ModelDataStream> &stream)
{
    return elements<float>(stream);
}

inline std::vector<std::uint32_t> uints(const QSharedPointer<Halvard::Orv::ModelDataStream> &stream)
{
    return elements<std::uint32_t>(stream);
}

inline std::vector<std::uint32_t> bitsOf(const std::vector<float> &values)
{
    std::vector<std::uint32_t> bits(values.size());
    if (!values.empty())
        std::memcpy(bits.data(), values.data(), values.size() * sizeof(float));
    return bits;
}

/// The same floats to the bit: NaNs with one payload are the same, 0.0 and -0.0
/// are not.
MATCHER_P(SameFloats, expected, "has the bits of " + ::testing::PrintToString(expected))
{
    const std::vector<float> wanted(expected);
    if (arg.size() != wanted.size()) {
        *result_listener << "it has " << arg.size() << " values, not " << wanted.size();
        return false;
    }
    const std::vector<std::uint32_t> have = bitsOf(arg);
    const std::vector<std::uint32_t> want = bitsOf(wanted);
    for (std::size_t i = 0; i < have.size(); ++i) {
        if (have[i] != want[i]) {
            *result_listener << "value " << i << " is " << arg[i] << " (0x" << std::hex << have[i]
                             << "), not " << wanted[i] << " (0x" << want[i] << ")";
            return false;
        }
    }
    return true;
}

inline auto areFloats(std::vector<float> expected)
{
    return SameFloats(std::move(expected));
}

} // namespace OrvTest
