#include "Welding/RowHash.h"

#include <QtCore/QRandomGenerator>

namespace Halvard::Orv {

namespace {

struct Seeds
{
    quint64 start;
    quint64 secret;
};

const Seeds &processSeeds()
{
    static const Seeds seeds = {QRandomGenerator::system()->generate64(),
                                QRandomGenerator::system()->generate64()};
    return seeds;
}

} // namespace

RowHash::RowHash() : _start(processSeeds().start), _secret(processSeeds().secret) {}

} // namespace Halvard::Orv
