/// \file
/// What a device context keeps to itself.
#pragma once

#include <OrvGL/OpenGLDeviceContext.h>

#include "ContextMark.h"
#include "DeletionQueue.h"
#include "NativeContext.h"

namespace Halvard::Orv {

struct OpenGLDeviceContext::Private
{
    NativeContext native;
    ContextMark mark; // null where the driver has no labels
    QSharedPointer<ShareGroup> group;
    DeletionQueue vertexArrays;
    QString description;
    int version = 0;
    bool hasMultiDrawIndirect = false;
    bool hasDrawParameters = false;

    bool matchesCurrent() const;
};

} // namespace Halvard::Orv
