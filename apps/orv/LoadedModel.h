/// \file
/// A model on the GPU and the OpenGL context that it lives in.
#pragma once

#include "ExitStatus.h"

#include <QtCore/QtGlobal>

#include <memory>

class QString;

namespace Halvard::Orv {
class GPUModel;
class HeadlessContext;
struct LoadReport;
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
    /// \param report filled when not null.
    ExitStatus load(const QString &fileName, LoadReport *report = nullptr);

    /// Only after load() was fine.
    GPUModel &model() { return *_model; }

    /// Wall time of the library's call.
    qint64 nanoseconds() const { return _nanoseconds; }

private:
    std::unique_ptr<HeadlessContext> _context;
    std::unique_ptr<GPUModel> _model;
    qint64 _nanoseconds = 0;
};

} // namespace Halvard::Orv::Cli
