/// \file
/// Objects to delete once a context that knows them is current.
#pragma once

#include <OrvGL/OpenGLFunctions.h>

#include <mutex>
#include <utility>
#include <vector>

namespace Halvard::Orv {

/// OpenGL names that wait to be deleted until their context is current. Any thread may add.
class DeletionQueue
{
public:
    void add(GLuint name)
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _names.push_back(name);
    }

    /// All names added since the last call.
    std::vector<GLuint> take()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return std::exchange(_names, {});
    }

private:
    std::mutex _mutex;
    std::vector<GLuint> _names;
};

} // namespace Halvard::Orv
