/// \file
/// Storage that an application might bring along: knows nothing of the library's
/// own stream, notes every call, and notices writes outside its elements.
#pragma once

#include <OrvModel/ModelDataStream.h>

#include <QtCore/QSharedPointer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OrvTest {

/// Every call on an allocator and its streams, in order, one line each:
///
///     alloc UINT 0 -> s0        s0.type             s0.setType USHORT
///     s0.isEmpty                s0.size             s0.byteCount
///     s0.resize 4               s0.data 0           s0.setData 2 3
///     s0.append 3               s0.delete           alloc UINT 0 -> null
///
/// Streams are numbered in the order handed out.
class CallLog
{
public:
    void add(std::string line);
    void clear();
    /// Calls `watcher` with each line from now on, before the call goes on: a test sees
    /// how things are at that moment. What it throws passes through the call.
    void watch(std::function<void(const std::string &)> watcher);

    const std::vector<std::string> &lines() const;
    /// Without the calls that change nothing: type, isEmpty, size, byteCount, data.
    std::vector<std::string> changes() const;
    /// The names of the operations that occur, sorted: "alloc", "setData", ...
    std::vector<std::string> operations() const;
    /// How many lines are exactly `line`.
    long count(const std::string &line) const;

private:
    std::vector<std::string> _lines;
    std::function<void(const std::string &)> _watcher;
};

/// "FLOAT" for GL_FLOAT, and so on; the plain number when it has no name here.
std::string typeName(unsigned type);

/// Keeps its elements between guard bytes and in fresh memory after every
/// resize, so that a pointer kept too long shows under the address sanitizer.
/// New elements are 0xCD bytes: nobody may count on zeros.
class RecordingStream : public Halvard::Orv::ModelDataStream
{
public:
    RecordingStream(unsigned type, unsigned long count, std::string name,
                    std::shared_ptr<CallLog> log);
    ~RecordingStream() override;

    unsigned type() const override;
    void setType(unsigned type) override;
    bool isEmpty() const override;
    unsigned long size() const override;
    void resize(unsigned long count) override;
    unsigned long byteCount() const override;
    void *data(unsigned long offset) override;
    void setData(unsigned long offset, unsigned long count, const void *source) override;
    void append(unsigned long count, const void *source) override;

private:
    void note(const std::string &call) const;
    void store(unsigned long count);
    void checkGuards() const;

    unsigned _type;
    unsigned long _count = 0;
    std::string _name;
    std::shared_ptr<CallLog> _log;
    std::vector<unsigned char> _memory;
};

/// Hands out RecordingStream objects, and null or too short ones once told to.
class RecordingAllocator : public Halvard::Orv::ModelDataStreamAllocator
{
public:
    RecordingAllocator();

    Halvard::Orv::ModelDataStream *alloc(unsigned type, unsigned long count) override;

    CallLog &log();
    /// After `count` more streams every alloc() gives null.
    void failAfter(unsigned long count);
    /// After `count` more streams every stream holds an element less than asked for.
    void shortenAfter(unsigned long count);
    /// After `count` more streams every stream has elements of `type`, whatever is asked
    /// for.
    void substituteAfter(unsigned long count, unsigned type);

private:
    std::shared_ptr<CallLog> _log;
    unsigned long _handedOut = 0;
    unsigned long _remaining;
    unsigned long _remainingWhole;
    unsigned long _remainingTyped;
    unsigned _substitute = 0;
};

} // namespace OrvTest
