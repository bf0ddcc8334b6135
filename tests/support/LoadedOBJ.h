/// \file
/// An OBJ file as the loader put it on the GPU, with short ways to ask for parts of it.
#pragma once

#include "support/UploadedModel.h"

#include <OrvGL/GPUModel.h>

#include <memory>

namespace OrvTest {

/// What one command draws.
struct Drawn
{
    Command command;
    std::vector<unsigned> indices; ///< the command's run of the element buffer
    Record record;
    Record instance;
};

/// Loads a file when it is made; an OpenGL context must be current. Everything is
/// empty where there is no bundle, and more than one bundle fails the test: all
/// groups of a file share one key.
class LoadedOBJ
{
public:
    explicit LoadedOBJ(const QString &fileName);

    /// Whether the loader gave a model, and one with a bundle.
    bool isModel() const { return _model != nullptr; }
    bool isEmpty() const { return _uploaded.bundles.empty(); }
    const QString &errorMessage() const { return _uploaded.error; }
    /// Warnings and worse.
    std::vector<Message> warnings() const;
    /// Debug lines, without addresses: how many vertices were welded.
    std::vector<std::string> statistics() const;

    Halvard::Orv::GPUModel &model() { return *_model; }
    const UploadedModel &uploaded() const { return _uploaded; }
    unsigned vertexCount() const { return _uploaded.bundle().vertexCount; }
    unsigned indexType() const { return _uploaded.bundle().indexType; }
    const std::vector<unsigned> &indices() const { return _uploaded.bundle().indices; }

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
    void checkBundle() const;
    void findDrawn();

    std::unique_ptr<Halvard::Orv::GPUModel> _model;
    UploadedModel _uploaded;
    std::vector<Drawn> _drawn;
};

} // namespace OrvTest
