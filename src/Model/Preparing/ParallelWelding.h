/// \file
/// Equal rows found, and values gathered, by several threads.
#pragma once

#include "Memory/GrowArray.h"
#include "Memory/ZeroedArray.h"
#include "Preparing/PreparingSizes.h"
#include "Threads/Work.h"
#include "Welding/RowSlots.h"

#include <QtCore/QtGlobal>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <vector>

namespace Halvard::Orv {

/// Set in an entry of numberRowsInParallel() that is a number already.
constexpr quint32 NumberFlag = 1u << 31;

/// Gives equal rows one number, counted up in the order in which they first appear: as
/// numberRows() does, but nothing is kept.
///
/// Rows are hashed first. Then each thread takes those of its share of the hashes, in the order of
/// the rows, into a table of its own: equal rows are in one table, and the first comes first.
/// Nothing is written for rows that have no equal before them, which are nearly all.
///
/// \param numbers an entry per row; receives the number of each, with NumberFlag; nothing of
///        meaning where all rows differ.
/// \return how many numbers there are; as many as rows where all differ.
template <typename Rows>
quint32 numberRowsInParallel(const Rows &rows, GrowArray<quint32> &numbers, Work &work,
                             const PreparingSizes &sizes)
{
    const auto rowCount = static_cast<quint32>(numbers.size());
    constexpr StagePart Hashing = {WorkStage::Welding, 0.42, 0.6};
    constexpr StagePart Finding = {WorkStage::Welding, 0.6, 0.85};
    constexpr StagePart Numbering = {WorkStage::Welding, 0.85, 0.88};
    constexpr quint32 Ahead = 32;
    const size_t size = sizes.elementsPerTask;
    const size_t blockCount = TaskRange::taskCount(size, rowCount);
    const size_t shareCount = work.threadCount();
    const auto shareOf = [&](quint64 hash) {
        return static_cast<size_t>((hash & 0xffff) * shareCount >> 16);
    };

    // Behind the numbers, where there is room: fresh memory would cost more.
    GrowArray<quint64> fresh;
    auto *hashes = reinterpret_cast<quint64 *>(numbers.data() + (rowCount + 1u) / 2 * 2);
    if (numbers.capacity() < 3 * (size_t(rowCount) + 1)) {
        fresh.resize(rowCount);
        hashes = fresh.data();
    }
    std::vector<std::atomic<size_t>> rowsOfShare(shareCount);
    work.forEach(Hashing, blockCount, [&](size_t block) {
        const TaskRange range(block, size, rowCount);
        std::vector<size_t> counts(shareCount);
        for (size_t i = range.begin; i < range.end; ++i) {
            const auto row = static_cast<quint32>(i);
            if (range.end - i > Ahead)
                rows.prefetch(row + Ahead);
            hashes[i] = rows.hash(row);
            numbers[i] = row;
            ++counts[shareOf(hashes[i])];
        }
        for (size_t share = 0; share < shareCount; ++share)
            rowsOfShare[share] += counts[share];
    });

    // In lists, since threads that write to neighbouring numbers would hinder each other.
    struct Repeated
    {
        quint32 row;
        quint32 first;
    };
    std::vector<std::vector<Repeated>> repeatedOfShare(shareCount);
    std::atomic<size_t> repeatedCount{0};
    WorkSteps steps{Finding, shareCount * blockCount};
    work.forEach(Finding, shareCount, [&](size_t share) {
        RowSlots table(rowCount, rowsOfShare[share]);
        std::vector<Repeated> repeated;
        const auto find = [&](quint32 row) {
            const quint32 first = table.findOrInsert(
                hashes[row], row, [&](quint32 known) { return rows.areEqual(known, row); });
            if (first != row)
                repeated.push_back({row, first});
        };
        std::vector<quint32> own(std::min<size_t>(size, 4096) + 1);
        for (size_t block = 0; block < blockCount; ++block) {
            const TaskRange range(block, size, rowCount);
            for (size_t begin = range.begin; begin < range.end; begin += own.size() - 1) {
                // No branch, since whose row it is cannot be predicted: every row is written to
                // the list, and counted if it is this share's.
                const size_t end = std::min(begin + own.size() - 1, range.end);
                size_t count = 0;
                for (size_t row = begin; row < end; ++row) {
                    own[count] = static_cast<quint32>(row);
                    count += shareOf(hashes[row]) == share ? 1 : 0;
                }
                const bool manyRepeat = repeated.size() > begin / shareCount / 8;
                // Inlined by force: the compiler leaves out calls of what only fetches.
                const auto lookAhead = [&](size_t i) __attribute__((always_inline))
                {
                    table.prefetch(hashes[own[i]]);
                    if (manyRepeat) // few values are looked at otherwise
                        rows.prefetch(own[i]);
                };
                for (size_t i = 0; i < std::min<size_t>(count, Ahead); ++i)
                    lookAhead(i);
                for (size_t i = 0; i < count; ++i) {
                    if (count - i > Ahead)
                        lookAhead(i + Ahead);
                    find(own[i]);
                }
            }
            work.step(steps);
        }
        repeatedCount += repeated.size();
        repeatedOfShare[share] = std::move(repeated);
    });
    if (repeatedCount == 0)
        return rowCount;
    for (const std::vector<Repeated> &repeated : repeatedOfShare) {
        for (const Repeated &entry : repeated)
            numbers[entry.row] = entry.first;
    }
    repeatedOfShare.clear();

    // The first of equal rows get their numbers, then the others theirs.
    std::vector<quint32> before(blockCount + 1);
    work.forEach(Numbering, blockCount, [&](size_t block) {
        const TaskRange range(block, size, rowCount);
        quint32 count = 0;
        for (size_t row = range.begin; row < range.end; ++row)
            count += numbers[row] == row ? 1 : 0;
        before[block + 1] = count;
    });
    for (size_t block = 0; block < blockCount; ++block)
        before[block + 1] += before[block];
    work.forEach(Numbering, blockCount, [&](size_t block) {
        const TaskRange range(block, size, rowCount);
        quint32 number = before[block];
        for (size_t row = range.begin; row < range.end; ++row) {
            if (numbers[row] == row)
                numbers[row] = NumberFlag | number++;
        }
    });
    work.forEach(Numbering, blockCount, [&](size_t block) {
        const TaskRange range(block, size, rowCount);
        for (size_t row = range.begin; row < range.end; ++row) {
            if ((numbers[row] & NumberFlag) == 0)
                numbers[row] = numbers[numbers[row]];
        }
    });
    return before[blockCount];
}

/// Moves the entries of the first of equal rows to the places of their numbers.
inline void keepFirstRows(GrowArray<quint32> &entries, const quint32 *numbers, quint32 rowCount)
{
    quint32 kept = 0;
    for (quint32 row = 0; row < rowCount; ++row) {
        if (numbers[row] == (NumberFlag | kept))
            entries[kept++] = entries[row];
    }
    entries.resize(kept);
}

/// Puts the values that indices select in their place: value i, of `Components` floats, from where
/// index i is to where indices up to `Components` times i are.
///
/// The values of the last indices lie behind all indices when there are enough components: those
/// of the last two thirds, or half, are gathered at the same time, then those of the last part of
/// what is left, and so on.
template <unsigned Components>
void gatherInPlace(float *memory, const float *values, size_t count, const StagePart &part,
                   Work &work, const PreparingSizes &sizes)
{
    constexpr size_t Ahead = 32;
    const auto indexAt = [&](size_t vertex) {
        quint32 index;
        std::memcpy(&index, memory + vertex, sizeof index);
        return index;
    };
    const auto gather = [&](size_t begin, size_t end) {
        for (size_t vertex = end; vertex-- > begin;) {
            if (vertex - begin >= Ahead)
                __builtin_prefetch(values + size_t(indexAt(vertex - Ahead)) * Components);
            const quint32 index = indexAt(vertex);
            std::memcpy(memory + vertex * Components, values + size_t(index) * Components,
                        Components * sizeof(float));
        }
    };
    for (size_t end = count; end > 0;) {
        const size_t begin = end > sizes.elementsPerTask ? (end + Components - 1) / Components : 0;
        if (begin == 0) {
            gather(0, end);
        } else {
            const size_t size = sizes.elementsPerTask;
            work.forEach(part, TaskRange::taskCount(size, end - begin), [&](size_t task) {
                const TaskRange range(task, size, end - begin);
                gather(begin + range.begin, begin + range.end);
            });
        }
        end = begin;
    }
}

} // namespace Halvard::Orv
