/// \file
/// Short models written out in a test, and what the judge says about them.
#pragma once

#include "reference/Differences.h"
#include "reference/ModelFiles.h"
#include "reference/Reference.h"

#include <cstring>

namespace OrvReference {

inline ModelFiles modelOf(const char *obj)
{
    return {{}, {{QStringLiteral("model.obj"), obj}}};
}

inline ModelFiles modelOf(const char *obj, const char *library)
{
    return {{}, {{QStringLiteral("model.obj"), obj}, {QStringLiteral("a.mtl"), library}}};
}

inline UploadedModel judged(const ModelFiles &model)
{
    const WrittenModel written(model);
    return judge(written.objPath());
}

/// The values of an attribute; none when the bundle lacks it.
inline std::vector<float> valuesOf(const Bundle &bundle, const char *attribute)
{
    const auto found = bundle.attributes.find(QString::fromLatin1(attribute));
    if (found == bundle.attributes.end())
        return {};
    const QByteArray &bytes = found->second.bytes;
    std::vector<float> values(static_cast<std::size_t>(bytes.size()) / sizeof(float));
    if (!values.empty())
        std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(float));
    return values;
}

} // namespace OrvReference
