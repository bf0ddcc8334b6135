/// \file
/// The bytes of an input as calls on a ModelBuilder.
#pragma once

#include "support/Fuzzing.h"

#include <OrvModel/ModelBuilder.h>

#include <QtCore/QByteArray>

namespace OrvFuzz {

/// Makes any calls in any order, and after each checks what always holds.
class BuilderScript
{
public:
    /// \param input the calls; each takes some bytes.
    /// \param huge whether counts may be such that their bytes need more than 32 bits.
    ///        Only the library's own streams say what they make of them.
    BuilderScript(const Input &input, Halvard::Orv::ModelBuilder &builder, bool huge)
        : _input(input), _builder(builder), _huge(huge)
    {}

    void run();

private:
    void call();
    void createAttribute();
    void addValues();
    void addIndices();
    void addFaces();
    void createGroup();
    void addFacesToGroup();
    void addWholeFace();
    void build();
    void prepareGroup();
    void prepare();
    void ask();

    QString attributeName();
    QString groupName();
    unsigned elementType();
    int components();
    unsigned long hugeCount(unsigned type);
    bool isHuge() { return _huge && _input.below(8) == 0; }
    bool isAffordable();
    void checkStreams();

    Input _input;
    Halvard::Orv::ModelBuilder &_builder;
    const bool _huge;
};

/// Everything that a builder holds, as bytes: builders that hold the same give the same.
QByteArray contentsOf(Halvard::Orv::ModelBuilder &builder);

} // namespace OrvFuzz
