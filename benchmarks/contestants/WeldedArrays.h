/// \file
/// From the corners of faces to the arrays that load_orv ends with, for libraries that leave this to
/// their caller: welding by meshoptimizer, and normals.
#pragma once

#include "Measurement.h"

#include <meshoptimizer.h>

#include <cmath>
#include <memory>
#include <new>
#include <utility>
#include <vector>

/// Leaves the elements that resize() adds without a value: every one is written right after it, and
/// zeros below it would be memory written twice.
template <typename T>
struct UnsetAllocator : std::allocator<T>
{
    template <typename U>
    struct rebind
    {
        using other = UnsetAllocator<U>;
    };

    template <typename U, typename... Arguments>
    void construct(U *at, Arguments &&...arguments)
    {
        if constexpr (sizeof...(Arguments) == 0)
            ::new (static_cast<void *>(at)) U;
        else
            ::new (static_cast<void *>(at)) U(std::forward<Arguments>(arguments)...);
    }
};

using Floats = std::vector<float, UnsetAllocator<float>>;
using Numbers = std::vector<unsigned, UnsetAllocator<unsigned>>;

/// The arrays of a model; the first three per corner before welding and per vertex after it. Empty
/// where the file has none.
struct Arrays
{
    Floats positions;
    Floats normals;
    Floats texCoords;
    Numbers indices;
};

inline void remap(Floats &values, size_t components, size_t corners, size_t vertices,
                  const Numbers &vertexOfCorner)
{
    if (values.empty())
        return;
    Floats welded(vertices * components);
    meshopt_remapVertexBuffer(welded.data(), values.data(), corners, components * sizeof(float),
                              vertexOfCorner.data());
    values.swap(welded);
}

/// Makes one vertex of all corners with the same bytes.
/// \return the vertex of each corner.
inline Numbers weld(Arrays &arrays)
{
    const size_t corners = arrays.positions.size() / 3;
    std::vector<meshopt_Stream> streams{
        {arrays.positions.data(), 3 * sizeof(float), 3 * sizeof(float)}};
    if (!arrays.normals.empty())
        streams.push_back({arrays.normals.data(), 3 * sizeof(float), 3 * sizeof(float)});
    if (!arrays.texCoords.empty())
        streams.push_back({arrays.texCoords.data(), 2 * sizeof(float), 2 * sizeof(float)});
    Numbers vertexOfCorner(corners);
    const size_t vertices = meshopt_generateVertexRemapMulti(
        vertexOfCorner.data(), nullptr, corners, corners, streams.data(), streams.size());
    remap(arrays.positions, 3, corners, vertices, vertexOfCorner);
    remap(arrays.normals, 3, corners, vertices, vertexOfCorner);
    remap(arrays.texCoords, 2, corners, vertices, vertexOfCorner);
    return vertexOfCorner;
}

/// Smooth normals of the triangles, which weigh as much as their areas.
inline void addNormals(Arrays &arrays)
{
    arrays.normals.assign(arrays.positions.size(), 0.0f);
    const float *p = arrays.positions.data();
    for (size_t i = 0; i + 2 < arrays.indices.size(); i += 3) {
        const size_t a = 3 * size_t(arrays.indices[i]);
        const size_t b = 3 * size_t(arrays.indices[i + 1]);
        const size_t c = 3 * size_t(arrays.indices[i + 2]);
        const float u[3] = {p[b] - p[a], p[b + 1] - p[a + 1], p[b + 2] - p[a + 2]};
        const float v[3] = {p[c] - p[a], p[c + 1] - p[a + 1], p[c + 2] - p[a + 2]};
        const float n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                            u[0] * v[1] - u[1] * v[0]};
        for (const size_t vertex : {a, b, c}) {
            for (size_t axis = 0; axis < 3; ++axis)
                arrays.normals[vertex + axis] += n[axis];
        }
    }
    for (size_t i = 0; i + 2 < arrays.normals.size(); i += 3) {
        float *n = arrays.normals.data() + i;
        const float length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
        for (size_t axis = 0; length > 0.0f && axis < 3; ++axis)
            n[axis] /= length;
    }
}

/// A contestant's main().
/// \param load from the name of a file to arrays; false where that fails.
template <typename Load>
int measureArrays(int argc, char *argv[], const Load &load)
{
    if (argc < 2)
        return 2;
    Arrays arrays;
    return measureLoad([&](Measurement &measured) {
        if (!load(argv[1], arrays))
            return false;
        if (arrays.normals.empty())
            addNormals(arrays);
        measured.vertices = arrays.positions.size() / 3;
        measured.triangles = arrays.indices.size() / 3;
        return true;
    });
}
