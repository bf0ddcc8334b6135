#include "support/Fuzzing.h"

#include <QtCore/QTextCodec>
#include <QtCore/QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace OrvFuzz {

void fail(const std::string &what)
{
    std::fprintf(stderr, "\n== FAILED: %s\n", what.c_str());
    std::abort();
}

unsigned choiceOf(const QByteArray &text)
{
    return qChecksum(text.constData(), static_cast<uint>(text.size()));
}

} // namespace OrvFuzz

/// An input must do the same each time and on every machine: no locale, and no messages,
/// which would cost more than what is tested.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    return 0;
}
