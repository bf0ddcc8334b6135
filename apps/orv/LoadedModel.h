/// \file
/// A model on the GPU and the OpenGL context that it lives in.
#pragma once

#include "ExitStatus.h"

#include <OrvModel/PreparationReport.h>

#include <memory>

class QString;

namespace Halvard::Orv {
class GPUModel;
class HeadlessContext;
} // namespace Halvard::Orv

namespace Halvard::Orv::Cli {

class LoadedModel
{
public:
    LoadedModel();
    ~LoadedModel();
    LoadedModel(const LoadedModel &) = delete;
    LoadedModel &operator=(const LoadedModel &) = delete;

    /// Makes a context, leaves it current, and loads the file. Prints on stderr what
    /// goes wrong, and what the library says on the way.
    /// \param fileName, threads as of prepareFile().
    ExitStatus load(const QString &fileName, int threads);

    /// Only after load() was fine.
    GPUModel &model() { return *_model; }
    /// What the file holds; likewise.
    const PreparationReport &report() const { return _report; }

private:
    std::unique_ptr<HeadlessContext> _context;
    std::unique_ptr<GPUModel> _model;
    PreparationReport _report;
};

} // namespace Halvard::Orv::Cli
