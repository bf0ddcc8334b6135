// The exported ways to a prepared model.
#include <OrvModel/ModelPreparing.h>

#include "Builder/ModelBuilderState.h"
#include "Builder/UploadPreparation.h"
#include "Lanes/FloatingPointState.h"
#include "Libraries/InputFile.h"
#include "OBJPreparing.h"

#include <QtCore/QFile>
#include <QtCore/QFileDevice>

#include <new>

namespace Halvard::Orv {

namespace {

void tell(const PrepareOptions &options, const QString &reason)
{
    if (options.reason)
        *options.reason = reason;
}

/// \param device open for reading.
std::unique_ptr<PreparedModel> prepare(QIODevice &device, const QString &fileName,
                                       QString &errorMessage, const PrepareOptions &options)
{
    OBJPreparation preparation(device, fileName, LoaderPath::Fast, {}, options);
    if (!preparation.read(errorMessage))
        return nullptr;
    return std::make_unique<PreparedModel>(preparation.prepare());
}

/// Calls `preparation`, and says so when memory ends in it, or the caller stops it.
template <typename Preparation>
std::unique_ptr<PreparedModel> withMessages(const QString &fileName, QString &errorMessage,
                                            const PrepareOptions &options,
                                            const Preparation &preparation)
{
    try {
        return preparation();
    } catch (const std::bad_alloc &) {
        // By now everything of the model is gone again, and there is room for words.
        qWarning("'%s' is not loaded: there is not enough memory for it", qUtf8Printable(fileName));
    } catch (const WorkStopped &) {
        tell(options, QStringLiteral("cancelled"));
        errorMessage = QStringLiteral("Loading of '%1' was cancelled").arg(fileName);
        return nullptr;
    }
    tell(options, QStringLiteral("not enough memory"));
    errorMessage = loadFailure(fileName);
    return nullptr;
}

} // namespace

std::unique_ptr<PreparedModel> prepareModelFromOBJFile(const QString &fileName,
                                                       QString &errorMessage,
                                                       const PrepareOptions &options)
{
    const FloatingPointState state;
    return withMessages(fileName, errorMessage, options, [&]() -> std::unique_ptr<PreparedModel> {
        QFile file(fileName);
        if (openInputFile(file, options.reason))
            return prepare(file, fileName, errorMessage, options);
        errorMessage = loadFailure(fileName);
        return nullptr;
    });
}

std::unique_ptr<PreparedModel> prepareModelFromOBJ(QIODevice &device, QString &errorMessage,
                                                   const PrepareOptions &options)
{
    const FloatingPointState state;
    const auto *file = qobject_cast<const QFileDevice *>(&device);
    const QString fileName = file ? file->fileName() : QString();
    return withMessages(fileName, errorMessage, options, [&]() -> std::unique_ptr<PreparedModel> {
        if (device.isReadable())
            return prepare(device, fileName, errorMessage, options);
        tell(options, QStringLiteral("not open for reading"));
        errorMessage = loadFailure(fileName);
        return nullptr;
    });
}

std::unique_ptr<PreparedModel> prepareModel(ModelBuilder &builder, const QString &positionAttribute)
{
    const FloatingPointState state;
    if (!canBeUploaded(builder, positionAttribute) || !prepareForUpload(builder, positionAttribute))
        return nullptr;
    std::unique_ptr<PreparedModelData> data = copyStreams(builder, positionAttribute);
    data->normalsAreGenerated = !builder.state().normalsAttribute.isNull();
    return std::make_unique<PreparedModel>(std::move(data));
}

} // namespace Halvard::Orv
