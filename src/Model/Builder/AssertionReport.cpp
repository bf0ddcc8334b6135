#include "Builder/AssertionReport.h"

#include <QtCore/QtDebug>

namespace Halvard::Orv {

void reportFailedAssertion(int line, const char *expression, const QString &detail)
{
    const QString escaped =
        QString::fromUtf8(expression).replace(QLatin1Char('%'), QLatin1String("\\%"));
    const QString message =
        QString::asprintf("[ !! ] Assertion '%s' failed: %s", escaped.toUtf8().constData(),
                          detail.toUtf8().constData());
    qCritical("[%s:%d] %s", "ModelBuilder", line, message.toUtf8().constData());
}

} // namespace Halvard::Orv
