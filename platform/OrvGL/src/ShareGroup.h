/// \file
/// Contexts that share objects.
#pragma once

#include "ContextMark.h"
#include "DeletionQueue.h"

#include <QtCore/QSharedPointer>

namespace Halvard::Orv {

/// Contexts that share buffers and textures; most groups are of one context. What buffers and
/// textures belong to.
class ShareGroup
{
public:
    /// The group of the context current on the calling thread; null when there is none.
    static QSharedPointer<ShareGroup> current();

    /// A group for the current context, which shares with none that is known.
    /// \param canMark whether the context has the debug labels that a mark needs.
    explicit ShareGroup(bool canMark);

    /// Whether a context of this group is current on the calling thread.
    bool isCurrent() const { return current().data() == this; }

    /// Whether the current context, seen for the first time, belongs to this group.
    bool hasCurrentContext() const { return _mark.isHere(); }

    /// Unlike any other group's of the process, earlier ones included.
    quint64 number() const { return _number; }

    /// Deletes a buffer: at once, or when a context of this group is next seen.
    void destroyBuffer(GLuint name);

    /// Deletes a texture likewise.
    void destroyTexture(GLuint name);

    /// Deletes what waits for it. A context of this group is current.
    void deletePending();

private:
    quint64 _number;
    ContextMark _mark;
    DeletionQueue _buffers;
    DeletionQueue _textures;
};

} // namespace Halvard::Orv
