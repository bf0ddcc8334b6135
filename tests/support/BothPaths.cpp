#include "support/BothPaths.h"

#include "support/ModelDifferences.h"
#include "support/ModelReadBack.h"

#include <OrvGL/GPUModel.h>

#include <gmock/gmock.h>

#include <memory>

namespace OrvTest {

using namespace Halvard::Orv;

UploadedModel loadByPath(const QString &fileName, LoaderPath path, const OBJScanLimits &limits)
{
    std::unique_ptr<GPUModel> model;
    return readBackFrom([&](QString &error) {
        model.reset(loadModelByPath(fileName, error, path, limits));
        return model.get();
    });
}

UploadedModel expectSameOnBothPaths(const QString &fileName, const OBJScanLimits &limits)
{
    SCOPED_TRACE(fileName.toStdString());
    const UploadedModel lines = loadByPath(fileName, LoaderPath::Lines, limits);
    UploadedModel fast = loadByPath(fileName, LoaderPath::Fast, limits);
    EXPECT_THAT(differences(lines, fast), testing::IsEmpty());
    return fast;
}

} // namespace OrvTest
