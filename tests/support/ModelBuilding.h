/// \file
/// Short ways to make small models in a builder.
#pragma once

#include <OrvModel/ModelBuilder.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QString>

#include <vector>

namespace OrvTest {

inline constexpr unsigned typeUnsignedByte = 0x1401;
inline constexpr unsigned typeUnsignedShort = 0x1403;
inline constexpr unsigned typeInt = 0x1404;
inline constexpr unsigned typeUnsignedInt = 0x1405;
inline constexpr unsigned typeFloat = 0x1406;
inline constexpr unsigned typeDouble = 0x140A;
inline constexpr unsigned typeHalfFloat = 0x140B;

/// What stands for a corner's missing normal or texture coordinate.
inline constexpr unsigned absentIndex = 0x7fffffff;

QString vertexName();
QString normalName();
QString texCoordName();

/// Streams of the library's own kind with these elements.
QSharedPointer<Halvard::Orv::ModelDataStream> floatStream(const std::vector<float> &values);
QSharedPointer<Halvard::Orv::ModelDataStream> uintStream(const std::vector<unsigned> &values);

/// Makes a float attribute with these values, and one index per corner.
void addAttribute(Halvard::Orv::ModelBuilder &builder, const QString &name, int components,
                  const std::vector<float> &values, const std::vector<unsigned> &indices);
void addFaces(Halvard::Orv::ModelBuilder &builder, const std::vector<unsigned> &cornerCounts);
/// Makes a group with an empty record and the next free id, and adds faces to it.
void addGroup(Halvard::Orv::ModelBuilder &builder, const QString &name,
              const std::vector<unsigned> &faces, quint64 flags = 0);

} // namespace OrvTest
