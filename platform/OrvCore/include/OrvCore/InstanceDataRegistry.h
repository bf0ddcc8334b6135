/// \file
/// The plans of the process, by name.
#pragma once

#include <OrvCore/OrvCoreExport.h>

#include <QtCore/QMap>
#include <QtCore/QString>

#include <memory>
#include <mutex>
#include <vector>

namespace Halvard::Orv {

/// \addtogroup records
/// @{

class InstanceDataPlan;

/// The plans of the process, by name. All operations may be called from any thread.
class ORVCORE_EXPORT InstanceDataRegistry
{
public:
    /// The process-wide registry, made on first use.
    static InstanceDataRegistry &Instance();

    InstanceDataRegistry(const InstanceDataRegistry &) = delete;
    InstanceDataRegistry &operator=(const InstanceDataRegistry &) = delete;

    /// Takes over `plan` and keeps it until the process ends.
    ///
    /// A second plan of the same name is kept beside the first, and the first goes on answering:
    /// records already packed with it, and pointers to it, stay right.
    /// \param plan made with `new` and complete: it must not be changed afterwards. Null, and a
    /// plan
    ///     that is registered already, are ignored.
    void registerPlan(InstanceDataPlan *plan);

    /// The first plan registered under `name`, valid until the process ends; null when there is
    /// none.
    const InstanceDataPlan *plan(const QString &name) const;

    /// How many plans were registered under `name`.
    int planCount(const QString &name) const;

private:
    InstanceDataRegistry();
    ~InstanceDataRegistry();

    mutable std::mutex _mutex;
    std::vector<std::unique_ptr<InstanceDataPlan>> _plans;
    QMap<QString, const InstanceDataPlan *> _firstOfName;
};

/// @}

} // namespace Halvard::Orv
