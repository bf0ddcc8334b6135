#include "support/RecordingStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <utility>

namespace OrvTest {

namespace {

constexpr unsigned long guardBytes = 64;
constexpr unsigned char guardByte = 0xA5;
constexpr unsigned char freshByte = 0xCD;

/// "setData" of "s0.setData 2 3", "alloc" of "alloc UINT 0 -> s0".
std::string operationOf(const std::string &line)
{
    const std::string call = line.substr(0, line.find(' '));
    return call.substr(call.find('.') + 1);
}

bool changesSomething(const std::string &line)
{
    static const std::array<const char *, 5> queries = {"type", "isEmpty", "size", "byteCount",
                                                        "data"};
    return std::find(queries.begin(), queries.end(), operationOf(line)) == queries.end();
}

} // namespace

void CallLog::add(std::string line)
{
    _lines.push_back(std::move(line));
    if (_watcher)
        _watcher(_lines.back());
}

void CallLog::watch(std::function<void(const std::string &)> watcher)
{
    _watcher = std::move(watcher);
}

void CallLog::clear()
{
    _lines.clear();
}

const std::vector<std::string> &CallLog::lines() const
{
    return _lines;
}

std::vector<std::string> CallLog::changes() const
{
    std::vector<std::string> found;
    std::copy_if(_lines.begin(), _lines.end(), std::back_inserter(found), changesSomething);
    return found;
}

std::vector<std::string> CallLog::operations() const
{
    std::vector<std::string> found;
    std::transform(_lines.begin(), _lines.end(), std::back_inserter(found), operationOf);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

long CallLog::count(const std::string &line) const
{
    return std::count(_lines.begin(), _lines.end(), line);
}

std::string typeName(unsigned type)
{
    switch (type) {
    case 0x1400:
        return "BYTE";
    case 0x1401:
        return "UBYTE";
    case 0x1402:
        return "SHORT";
    case 0x1403:
        return "USHORT";
    case 0x1404:
        return "INT";
    case 0x1405:
        return "UINT";
    case 0x1406:
        return "FLOAT";
    case 0x140A:
        return "DOUBLE";
    case 0x140B:
        return "HALF";
    default:
        return std::to_string(type);
    }
}

RecordingStream::RecordingStream(unsigned type, unsigned long count, std::string name,
                                 std::shared_ptr<CallLog> log)
    : _type(type), _name(std::move(name)), _log(std::move(log))
{
    store(count);
}

RecordingStream::~RecordingStream()
{
    checkGuards();
    note("delete");
}

unsigned RecordingStream::type() const
{
    note("type");
    return _type;
}

void RecordingStream::setType(unsigned type)
{
    note("setType " + typeName(type));
    _type = type;
    store(_count);
}

bool RecordingStream::isEmpty() const
{
    note("isEmpty");
    return ModelDataStream::isEmpty();
}

unsigned long RecordingStream::size() const
{
    note("size");
    return _count;
}

void RecordingStream::resize(unsigned long count)
{
    note("resize " + std::to_string(count));
    store(count);
}

unsigned long RecordingStream::byteCount() const
{
    note("byteCount");
    return ModelDataStream::byteCount();
}

void *RecordingStream::data(unsigned long offset)
{
    note("data " + std::to_string(offset));
    if (offset > _count)
        ADD_FAILURE() << _name << ": data at " << offset << " of " << _count;
    return _memory.data() + guardBytes + offset * typeSize(_type);
}

void RecordingStream::setData(unsigned long offset, unsigned long count, const void *source)
{
    note("setData " + std::to_string(offset) + ' ' + std::to_string(count));
    if (offset > _count || count > _count - offset) {
        ADD_FAILURE() << _name << ": setData of " << count << " at " << offset << " of " << _count;
        return;
    }
    if (count > 0)
        std::memcpy(_memory.data() + guardBytes + offset * typeSize(_type), source,
                    count * typeSize(_type));
}

void RecordingStream::append(unsigned long count, const void *source)
{
    note("append " + std::to_string(count));
    ModelDataStream::append(count, source);
}

void RecordingStream::note(const std::string &call) const
{
    _log->add(_name + '.' + call);
}

void RecordingStream::store(unsigned long count)
{
    checkGuards();
    const unsigned long byteCount = count * typeSize(_type);
    std::vector<unsigned char> memory(guardBytes + byteCount + guardBytes, guardByte);
    std::fill_n(memory.begin() + guardBytes, byteCount, freshByte);
    if (!_memory.empty()) {
        const unsigned long kept = std::min(byteCount, _memory.size() - 2 * guardBytes);
        std::copy_n(_memory.begin() + guardBytes, kept, memory.begin() + guardBytes);
    }
    _memory.swap(memory);
    _count = count;
}

void RecordingStream::checkGuards() const
{
    if (_memory.empty())
        return;
    const auto intact = [](unsigned char byte) { return byte == guardByte; };
    if (!std::all_of(_memory.begin(), _memory.begin() + guardBytes, intact))
        ADD_FAILURE() << _name << ": written to before its first element";
    if (!std::all_of(_memory.end() - guardBytes, _memory.end(), intact))
        ADD_FAILURE() << _name << ": written to behind its last element";
}

RecordingAllocator::RecordingAllocator()
    : _log(std::make_shared<CallLog>()), _remaining(std::numeric_limits<unsigned long>::max()),
      _remainingWhole(std::numeric_limits<unsigned long>::max()),
      _remainingTyped(std::numeric_limits<unsigned long>::max())
{}

Halvard::Orv::ModelDataStream *RecordingAllocator::alloc(unsigned type, unsigned long count)
{
    const std::string call = "alloc " + typeName(type) + ' ' + std::to_string(count) + " -> ";
    if (_remaining == 0) {
        _log->add(call + "null");
        return nullptr;
    }
    --_remaining;
    if (_remainingWhole > 0)
        --_remainingWhole;
    else if (count > 0)
        --count;
    if (_remainingTyped > 0)
        --_remainingTyped;
    else
        type = _substitute;
    const std::string name = 's' + std::to_string(_handedOut++);
    _log->add(call + name);
    return new RecordingStream(type, count, name, _log);
}

CallLog &RecordingAllocator::log()
{
    return *_log;
}

void RecordingAllocator::failAfter(unsigned long count)
{
    _remaining = count;
}

void RecordingAllocator::substituteAfter(unsigned long count, unsigned type)
{
    _remainingTyped = count;
    _substitute = type;
}

void RecordingAllocator::shortenAfter(unsigned long count)
{
    _remainingWhole = count;
}

} // namespace OrvTest
