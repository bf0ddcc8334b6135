// Corners with the same indices are the same vertex, and comparing two or three
// indices costs far less than comparing the values behind them: only the distinct
// tuples, a fifth of the corners in most models, have to be welded by their bytes.
//
// Several threads take a range of the corners each, and number its tuples as if there were no
// others. A tuple that an earlier range has as well, seldom more than at the borders of a range,
// then gets the number it has there, and the others are numbered on from those of the ranges
// before: in the order of first appearance, whoever did what, and when.
//
// Each range has a table of its own over all positions. It takes memory where the range's
// positions are, which are few of all unless the faces are in random order.
#include "Preparing/IndexTuples.h"

#include "Preparing/TupleFinder.h"
#include "Threads/Work.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Halvard::Orv {

namespace {

constexpr StagePart Finding = {WorkStage::Welding, 0.0, 0.32};
constexpr StagePart Comparing = {WorkStage::Welding, 0.32, 0.36};
constexpr StagePart Numbering = {WorkStage::Welding, 0.36, 0.38};
constexpr StagePart Renumbering = {WorkStage::Welding, 0.38, 0.42};

/// More would hold too many tables where the faces are in random order.
constexpr size_t MostRanges = 8;

/// Set where a tuple is one of an earlier range: the number beside it is that tuple's slot.
constexpr quint32 KnownFlag = 1u << 31;

/// Most values belong to one tuple only, so the largest number of values is close
/// to the number of tuples.
size_t expectedTuples(const CornerIndices &positions, const std::vector<CornerIndices> &others)
{
    size_t largest = positions.valueCount;
    for (const CornerIndices &column : others)
        largest = std::max<size_t>(largest, column.valueCount);
    return largest + largest / 8;
}

/// The tuples of all corners, range by range.
///
/// Tuple t of the range that begins with corner b has the slot b + t.
template <unsigned Others>
class RangesOfTuples
{
public:
    RangesOfTuples(CornerIndices &&positions, std::vector<CornerIndices> &&others, Work &work,
                   const PreparingSizes &sizes, size_t rangeCount)
        : _positions(std::move(positions)), _others(std::move(others)), _work(work), _sizes(sizes),
          _ranges(rangeCount)
    {
        const size_t cornerCount = _positions.indices.size();
        for (size_t number = 0; number < rangeCount; ++number) {
            const EqualRange range(number, rangeCount, cornerCount);
            _ranges[number].begin = range.begin;
            _ranges[number].end = range.end;
        }
    }

    IndexTuples run()
    {
        find();
        _firstCount = _ranges[0].finder->count();
        if (_ranges.size() == 1)
            return collect(_firstCount);
        _numbers.resize(_positions.indices.size());
        listTasks();
        findKnown();
        const quint32 count = number();
        renumberCorners();
        return collect(count);
    }

private:
    using Finder = TupleFinder<Others>;

    struct Range
    {
        size_t begin = 0;
        size_t end = 0;
        std::optional<Finder> finder;
    };

    /// Some tuples of a range other than the first, whose tuples keep their numbers.
    struct Task
    {
        size_t range;
        quint32 begin;
        quint32 end;
        quint32 newCount = 0; ///< tuples that no earlier range has
    };

    TupleColumns<Others> columns()
    {
        TupleColumns<Others> columns;
        columns.positions = _positions.indices.data();
        columns.positionCount = _positions.valueCount;
        for (unsigned i = 0; i < Others; ++i) {
            columns.others[i] = _others[i].indices.data();
            columns.otherCounts[i] = _others[i].valueCount;
        }
        return columns;
    }

    /// The tuples of each range, numbered from 0 on.
    void find()
    {
        const TupleColumns<Others> all = columns();
        const size_t expected = expectedTuples(_positions, _others);
        const size_t size = _sizes.elementsPerTask;
        WorkSteps steps{Finding,
                        TaskRange::taskCount(size, _positions.indices.size()) + _ranges.size() - 1};
        _work.forEach(Finding, _ranges.size(), [&](size_t number) {
            Range &range = _ranges[number];
            const size_t count = range.end - range.begin;
            // The first range's arrays become those of all.
            Finder finder(all.from(range.begin), count,
                          number == 0 ? expected : expected / _ranges.size());
            for (size_t task = 0; task < TaskRange::taskCount(size, count); ++task) {
                const TaskRange corners(task, size, count);
                finder.add(corners.begin, corners.end);
                _work.step(steps);
            }
            range.finder.emplace(std::move(finder));
        });
    }

    void listTasks()
    {
        for (size_t range = 1; range < _ranges.size(); ++range) {
            const size_t count = _ranges[range].finder->count();
            for (size_t task = 0; task < TaskRange::taskCount(_sizes.elementsPerTask, count);
                 ++task) {
                const TaskRange tuples(task, _sizes.elementsPerTask, count);
                _tasks.push_back(
                    {range, static_cast<quint32>(tuples.begin), static_cast<quint32>(tuples.end)});
            }
        }
    }

    /// Calls function(slot) for the slots of a task's tuples.
    template <typename Function>
    void forEachSlot(const Task &task, const Function &function)
    {
        const size_t begin = _ranges[task.range].begin;
        for (size_t slot = begin + task.begin; slot < begin + task.end; ++slot)
            function(slot);
    }

    /// Notes which tuples an earlier range has: the first that has it, where it is new.
    void findKnown()
    {
        _work.forEach(Comparing, _tasks.size(), [&](size_t number) {
            Task task = _tasks[number];
            const Finder &finder = *_ranges[task.range].finder;
            for (quint32 tuple = task.begin; tuple < task.end; ++tuple) {
                const quint32 known = slotInEarlierRange(task.range, finder.positionOf(tuple),
                                                         finder.othersOf(tuple));
                _numbers[_ranges[task.range].begin + tuple] = known;
                task.newCount += known == 0 ? 1 : 0;
            }
            _tasks[number] = task;
        });
    }

    /// \return KnownFlag and the slot; 0 when no earlier range has the tuple.
    quint32 slotInEarlierRange(size_t before, quint32 position,
                               const typename Finder::Indices &others) const
    {
        for (size_t range = 0; range < before; ++range) {
            const quint32 tuple = _ranges[range].finder->find(position, others);
            if (tuple != Finder::NoTuple)
                return KnownFlag | static_cast<quint32>(_ranges[range].begin + tuple);
        }
        return 0;
    }

    /// Replaces what is noted of each tuple by its number.
    /// \return how many numbers there are.
    quint32 number()
    {
        std::vector<quint32> firstNumbers;
        quint32 count = _firstCount;
        for (const Task &task : _tasks) {
            firstNumbers.push_back(count);
            count += task.newCount;
        }
        _work.forEach(Numbering, _tasks.size(), [&](size_t number) {
            quint32 next = firstNumbers[number];
            forEachSlot(_tasks[number], [&](size_t slot) {
                if ((_numbers[slot] & KnownFlag) == 0)
                    _numbers[slot] = next++;
            });
        });
        _work.forEach(Numbering, _tasks.size(), [&](size_t number) {
            const Task &task = _tasks[number];
            if (task.newCount == task.end - task.begin)
                return;
            forEachSlot(task, [&](size_t slot) {
                if ((_numbers[slot] & KnownFlag) != 0)
                    _numbers[slot] = numberAt(_numbers[slot] & ~KnownFlag);
            });
        });
        return count;
    }

    quint32 numberAt(quint32 slot) const { return slot < _ranges[0].end ? slot : _numbers[slot]; }

    void renumberCorners()
    {
        quint32 *const tupleOf = _positions.indices.data();
        const size_t first = _ranges[0].end;
        const size_t size = _sizes.elementsPerTask;
        const size_t count = _positions.indices.size() - first;
        _work.forEach(Renumbering, TaskRange::taskCount(size, count), [&](size_t task) {
            const TaskRange corners(task, size, count);
            size_t corner = first + corners.begin;
            for (const Range &range : _ranges) {
                const quint32 *const numbers = _numbers.data() + range.begin;
                for (; corner < std::min(range.end, first + corners.end); ++corner)
                    tupleOf[corner] = numbers[tupleOf[corner]];
            }
        });
    }

    /// The tuples of all ranges, each once, in the order of their numbers.
    IndexTuples collect(quint32 count)
    {
        IndexTuples tuples;
        tuples.tupleOfCorner = std::move(_positions.indices);
        tuples.positions = _ranges[0].finder->takePositions();
        tuples.positions.resize(count);
        for (CornerIndices &column : _others)
            tuples.others.push_back(std::move(column.indices));
        _work.forEach(Renumbering, Others + 1, [&](size_t column) {
            if (column == 0)
                appendPositions(tuples.positions);
            else
                moveTogether(tuples.others[column - 1]);
        });
        for (GrowArray<quint32> &others : tuples.others)
            others.resize(count);
        tuples.reusable = _ranges[0].finder->takeReusable();
        tuples.reusable.resize(count);
        return tuples;
    }

    /// Calls take(slot, number) for the tuples of the later ranges that are in no earlier one.
    template <typename Take>
    void forEachNew(const Take &take)
    {
        quint32 next = _firstCount;
        for (const Task &task : _tasks) {
            forEachSlot(task, [&](size_t slot) {
                if (_numbers[slot] == next)
                    take(slot, next++);
            });
        }
    }

    void appendPositions(GrowArray<quint32> &positions)
    {
        size_t range = 0;
        forEachNew([&](size_t slot, quint32 number) {
            while (slot >= _ranges[range].end)
                ++range;
            positions[number] = _ranges[range].finder->positionOf(
                static_cast<quint32>(slot - _ranges[range].begin));
        });
    }

    /// In place: no number is larger than its slot.
    void moveTogether(GrowArray<quint32> &others)
    {
        forEachNew([&](size_t slot, quint32 number) { others[number] = others[slot]; });
    }

    CornerIndices _positions;
    std::vector<CornerIndices> _others;
    Work &_work;
    const PreparingSizes _sizes;
    std::vector<Range> _ranges;
    quint32 _firstCount = 0; ///< tuples of the first range
    std::vector<Task> _tasks;
    GrowArray<quint32> _numbers; ///< per slot, but for those of the first range
};

} // namespace

IndexTuples numberIndexTuples(CornerIndices &&positions, std::vector<CornerIndices> &&others,
                              Work &work, const PreparingSizes &sizes)
{
    const size_t ranges =
        std::min<size_t>({work.threadCount(), MostRanges, positions.indices.size() + 1});
    const auto run = [&](auto tuples) { return tuples.run(); };
    switch (others.size()) {
    case 0:
        return run(RangesOfTuples<0>(std::move(positions), std::move(others), work, sizes, ranges));
    case 1:
        return run(RangesOfTuples<1>(std::move(positions), std::move(others), work, sizes, ranges));
    default:
        return run(RangesOfTuples<2>(std::move(positions), std::move(others), work, sizes, ranges));
    }
}

} // namespace Halvard::Orv
