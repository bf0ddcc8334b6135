/// \file
/// Records as one array for a shader.
#pragma once

#include <OrvCore/InstanceData.h>
#include <OrvCore/OrvCoreExport.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

namespace Halvard::Orv {

/// \addtogroup records
/// @{

/// A named list of records, one per draw command, and their form as a shader reads them.
class ORVCORE_EXPORT InstanceDataCollection
{
public:
    /// \param name the plan by which pack() lays the records out. It need not be registered yet.
    /// \param records in the order of the commands they belong to; may be empty.
    InstanceDataCollection(const QString &name, const QList<InstanceData> &records);

    /// The name given, which is that of the plan.
    QString name() const { return _name; }

    /// The records given, in their order.
    const QList<InstanceData> &records() const { return _records; }

    /// The records as one array for a shader storage buffer (layout std430):
    /// `records().size()` times InstanceDataPlan::stride() bytes.
    ///
    /// The plan is the one registered under name() at this moment; the names of the records' own
    /// plans play no part. A member that a record lacks, and all padding, is zeros. Of a value
    /// longer than its member the front is taken; a shorter one is filled up with zeros. Members
    /// that the plan does not declare are left out. A texture member is 1 where the record has a
    /// texture or a texture path that is not empty, else 0. \return empty when no plan of that name
    /// is registered, when there are no records, and (with a
    ///     warning) when the array would pass INT_MAX bytes.
    QByteArray pack() const;

private:
    QString _name;
    QList<InstanceData> _records;
};

/// @}

} // namespace Halvard::Orv
