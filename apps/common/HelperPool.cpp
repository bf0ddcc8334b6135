#include "HelperPool.h"

#include <QtCore/QThreadPool>

namespace Halvard::Orv::Apps {

QThreadPool &helperPool()
{
    static auto *const pool = new QThreadPool;
    return *pool;
}

} // namespace Halvard::Orv::Apps
