#pragma once

#include <OrvGL/OpenGLFunctions.h>

#include <QMutex>
#include <QMutexLocker>

#include <utility>
#include <vector>

namespace Halvard::Orv {

/// OpenGL names that wait to be deleted until their context is current. Any thread may add.
class DeletionQueue
{
public:
    void add(GLuint name)
    {
        const QMutexLocker lock(&_mutex);
        _names.push_back(name);
    }

    /// All names added since the last call.
    std::vector<GLuint> take()
    {
        const QMutexLocker lock(&_mutex);
        return std::exchange(_names, {});
    }

private:
    QMutex _mutex;
    std::vector<GLuint> _names;
};

} // namespace Halvard::Orv
