/// \file
/// An OBJ file as the loader put it on the GPU, read back as plain values.
#pragma once

#include "support/MessageCapture.h"

#include <OrvCore/InstanceData.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>

#include <QtCore/QString>

#include <map>
#include <memory>
#include <vector>

namespace OrvTest {

/// What one command draws.
struct Drawn
{
    QString material;
    QString object;
    Halvard::Orv::DrawElementsIndirectCommand command;
    std::vector<unsigned> indices; ///< the command's run of the element buffer
    Halvard::Orv::InstanceData record;
    Halvard::Orv::InstanceData instance;
};

/// Loads a file when it is made; an OpenGL context must be current. Everything is
/// empty where there is no bundle, and more than one bundle fails the test: all
/// groups of a file share one key.
class LoadedOBJ
{
public:
    /// What the error message is before the load.
    static QString untouched();

    explicit LoadedOBJ(const QString &fileName);

    /// Whether the loader gave a model, and one with a bundle.
    bool isModel() const { return _model != nullptr; }
    bool isEmpty() const { return !_model || _model->bundleCount() == 0; }
    const QString &errorMessage() const { return _errorMessage; }
    /// Warnings and worse.
    const std::vector<Message> &warnings() const { return _warnings; }
    /// Debug lines: how many vertices were welded.
    const std::vector<std::string> &statistics() const { return _statistics; }

    Halvard::Orv::GPUModel &model() { return *_model; }
    unsigned vertexCount() const { return _vertexCount; }
    unsigned indexType() const { return _indexType; }
    const std::vector<unsigned> &indices() const { return _indices; }

    /// The names of the vertex attributes, sorted.
    std::vector<QString> attributeNames() const;
    /// Values of an attribute, vertex by vertex; empty when there is none.
    std::vector<float> values(const char *attribute) const;
    int components(const char *attribute) const;

    /// Everything drawn, in the order of the commands, which is not defined.
    const std::vector<Drawn> &drawn() const { return _drawn; }
    /// The names of the materials drawn, sorted.
    std::vector<QString> materials() const;
    /// What is drawn with a material; one without indices fails the test.
    const Drawn &drawnWith(const char *material) const;
    /// The values of an attribute at each corner of each triangle of a material.
    std::vector<float> cornerValues(const char *material, const char *attribute) const;

private:
    struct Attribute
    {
        int components;
        std::vector<float> values;
    };

    void readBundle();

    std::unique_ptr<Halvard::Orv::GPUModel> _model;
    QString _errorMessage;
    std::vector<Message> _warnings;
    std::vector<std::string> _statistics;
    unsigned _vertexCount = 0;
    unsigned _indexType = 0;
    std::vector<unsigned> _indices;
    std::map<QString, Attribute> _attributes;
    std::vector<Drawn> _drawn;
};

/// The floats that a member of a record holds.
std::vector<float> floatsOf(const Halvard::Orv::InstanceData &record, const char *member);

/// A record as text, one member a line, sorted: "Kd 1 0 0", "map_Kd /a/b.png",
/// "map_Ks texture".
std::vector<std::string> described(const Halvard::Orv::InstanceData &record);

} // namespace OrvTest
