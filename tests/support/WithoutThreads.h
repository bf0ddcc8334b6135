/// \file
/// A system that starts no more threads.
#pragma once

#include <gtest/gtest.h>

#include <QtCore/QThreadPool>

#include <pthread.h>

namespace OrvTest {

/// While it lives, no thread can be started whose stack has the default size: that size is more
/// than there are addresses. What is left behind in Qt's pool of the process is not: a thread that
/// it could not start counts as one at work for ever.
class WithoutThreads
{
public:
    WithoutThreads()
    {
        QThreadPool::globalInstance()->waitForDone(); // and ends those that wait for work
        EXPECT_EQ(pthread_getattr_default_np(&_before), 0);
        pthread_attr_t huge;
        EXPECT_EQ(pthread_getattr_default_np(&huge), 0);
        EXPECT_EQ(pthread_attr_setstacksize(&huge, size_t(1) << 47), 0);
        EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
        pthread_attr_destroy(&huge);
    }

    ~WithoutThreads()
    {
        EXPECT_EQ(pthread_setattr_default_np(&_before), 0);
        pthread_attr_destroy(&_before);
    }

    WithoutThreads(const WithoutThreads &) = delete;
    WithoutThreads &operator=(const WithoutThreads &) = delete;

private:
    pthread_attr_t _before;
};

} // namespace OrvTest
