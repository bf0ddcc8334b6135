/// \file
/// Short models written out in a test, and what the reference implementation makes of them.
#pragma once

#include "reference/ModelFiles.h"
#include "reference/Reference.h"

namespace OrvReference {

inline ModelFiles modelOf(const char *obj)
{
    return {{}, {{QStringLiteral("model.obj"), obj}}};
}

inline ModelFiles modelOf(const char *obj, const char *library)
{
    return {{}, {{QStringLiteral("model.obj"), obj}, {QStringLiteral("a.mtl"), library}}};
}

inline UploadedModel loadByReference(const ModelFiles &model)
{
    const WrittenModel written(model);
    return loadByReference(written.objPath());
}

} // namespace OrvReference
