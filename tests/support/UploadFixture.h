/// \file
/// A small model, and a place to upload it to.
#pragma once

#include "support/GLTest.h"
#include "support/GPUReadBack.h"
#include "support/MessageCapture.h"
#include "support/ModelBuilding.h"

#include <OrvCore/InstanceData.h>
#include <OrvCore/InstanceDataCollection.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvModel/ModelBuilder.h>

#include <stdexcept>
#include <vector>

namespace OrvTest {

/// What the tests upload, and what comes of it.
///
///     d--c      One face of four corners, cut from b to d:
///     |\ |      triangles a b d and b c d, vertices 0 1 3 and 1 2 3.
///     | \|
///     a--b
class UploadFixture : public GLTest
{
protected:
    const std::vector<float> squarePositions = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};

    void addSquare(Halvard::Orv::ModelBuilder &builder) const
    {
        addFaces(builder, {4});
        addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 3});
    }

    void addSquareWithGroup(Halvard::Orv::ModelBuilder &builder) const
    {
        addSquare(builder);
        addGroup(builder, a, {0});
    }

    /// Two triangles in two groups: face 0 in `a`, face 1 in `b`.
    void addTwoGroups(Halvard::Orv::ModelBuilder &builder, quint64 flagsOfA, quint64 flagsOfB) const
    {
        addFaces(builder, {3, 3});
        addAttribute(builder, vertexName(), 3, squarePositions, {0, 1, 2, 0, 2, 3});
        addGroup(builder, a, {0}, flagsOfA);
        addGroup(builder, b, {1}, flagsOfB);
    }

    void upload(Halvard::Orv::ModelBuilder &builder, const QString &materialIdMember = QString())
    {
        builder.upload(&model, instanceRecord(), vertexName(), materialIdMember, GL_STATIC_DRAW,
                       GL_TRIANGLES);
    }

    static Halvard::Orv::InstanceData instanceRecord()
    {
        Halvard::Orv::InstanceData record(QStringLiteral("InstanceInfo"));
        const float scale = 2;
        record.set(QStringLiteral("scale"), &scale, sizeof scale);
        return record;
    }

    /// A bundle of the model, which must exist.
    Halvard::Orv::DrawBuffers &bundle(int index = 0) const
    {
        Halvard::Orv::DrawBuffers *found = model.bundle(index);
        if (!found)
            throw std::out_of_range("no such bundle");
        return *found;
    }

    MessageCapture messages;
    Halvard::Orv::GPUModel model;
    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
};

} // namespace OrvTest
