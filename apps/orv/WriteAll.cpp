#include "WriteAll.h"

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>

namespace Halvard::Orv::Cli {

bool writeAll(QIODevice &device, const QByteArray &bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 written = device.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

} // namespace Halvard::Orv::Cli
