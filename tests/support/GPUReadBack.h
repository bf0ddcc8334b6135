/// \file
/// What an uploaded model holds on the GPU, as plain vectors.
#pragma once

#include <OrvGL/BufferObject.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/VertexArrayObject.h>

#include <gtest/gtest.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>

#include <cstring>
#include <vector>

namespace OrvTest {

/// The contents of a buffer, read as `T`. A null buffer fails the test.
template <typename T>
std::vector<T> downloaded(const QSharedPointer<Halvard::Orv::BufferObject> &buffer)
{
    if (!buffer) {
        ADD_FAILURE() << "null buffer";
        return {};
    }
    const QByteArray bytes = buffer->download();
    EXPECT_EQ(bytes.size(), buffer->byteCount());
    std::vector<T> values(static_cast<std::size_t>(bytes.size()) / sizeof(T));
    EXPECT_EQ(values.size() * sizeof(T), static_cast<std::size_t>(bytes.size()));
    if (!values.empty())
        std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(T));
    return values;
}

/// The vertex attribute `name` of a bundle; one without a buffer when it has none.
inline Halvard::Orv::VertexArrayObject::Attribute
vertexAttribute(const Halvard::Orv::DrawBuffers &bundle, const QString &name)
{
    if (bundle.VAO()) {
        for (const auto &attribute : bundle.VAO()->attributes()) {
            if (attribute.name == name)
                return attribute;
        }
    }
    return {name, {}, 0, 0};
}

} // namespace OrvTest
