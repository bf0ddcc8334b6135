// What IndexTuples.cpp does, by threads that take corners in blocks. A tuple is a node in the
// chain of its position; whoever meets it first adds the node, and everybody lowers the node's
// first corner to their own: in the end it is the first of the file, whoever came first. Numbers
// are given by the order of first corners when all are known. So nothing depends on which thread
// did what, nor when.
//
// Nodes are added to chains by exchanging the chain's head, without locks. A chain may grow
// beyond its full length when several threads add to it at once; a tuple that is then no longer
// seen comes again.
#include "Preparing/ParallelTuples.h"

#include "Memory/ZeroedArray.h"
#include "Preparing/FirstCorners.h"
#include "Threads/Work.h"
#include "Welding/RowHash.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

namespace Halvard::Orv {

namespace {

constexpr StagePart Finding = {WorkStage::Welding, 0.0, 0.3};
constexpr StagePart Marking = {WorkStage::Welding, 0.3, 0.33};
constexpr StagePart Numbering = {WorkStage::Welding, 0.33, 0.36};
constexpr StagePart Renumbering = {WorkStage::Welding, 0.36, 0.42};

/// A corner, where 0 means none and the first corner is the largest: memory of zeros holds none.
constexpr quint32 inverted(quint32 corner)
{
    return ~corner;
}

quint32 load(const quint32 &value)
{
    return __atomic_load_n(&value, __ATOMIC_ACQUIRE);
}

/// Makes `value` the larger of itself and `candidate`.
void raise(quint32 &value, quint32 candidate)
{
    quint32 seen = __atomic_load_n(&value, __ATOMIC_RELAXED);
    while (candidate > seen && !__atomic_compare_exchange_n(&value, &seen, candidate, true,
                                                            __ATOMIC_RELAXED, __ATOMIC_RELAXED)) {
    }
}

template <unsigned Others>
struct Node
{
    quint32 next;  ///< 1 + the next node of the position; in the end the tuple's number
    quint32 first; ///< inverted(first corner); 0 of a node that is not used
    quint32 position;
    std::array<quint32, Others> others;
};

/// The nodes of all threads. Each takes some at a time, so that threads do not write to the same
/// cache lines.
template <unsigned Others>
class Nodes
{
public:
    static constexpr size_t TakenAtOnce = 512;

    /// \param takers each of which may leave nodes that it has taken.
    Nodes(size_t mostTuples, size_t takers) : _nodes(mostTuples + (takers + 1) * TakenAtOnce) {}

    size_t take() { return _taken.fetch_add(TakenAtOnce); }
    size_t taken() const { return std::min(_taken.load(), _nodes.size()); }
    Node<Others> &operator[](size_t i) { return _nodes[i]; }

    /// The memory of the nodes, of which a part has been used.
    GrowArray<quint32> intoMemory() &&
    {
        return std::move(_nodes).intoArray().template recast<quint32>();
    }

private:
    ZeroedArray<Node<Others>> _nodes;
    std::atomic<size_t> _taken{0};
};

/// Where one thread takes its nodes from.
struct NodeSupply
{
    size_t next = 0;
    size_t end = 0;
};

template <unsigned Others>
class SharedChains
{
public:
    using Indices = std::array<quint32, Others>;

    SharedChains(quint32 positionCount, size_t cornerCount, size_t takers)
        : _heads(static_cast<size_t>(positionCount) + 1), _nodes(cornerCount, takers + 1)
    {}

    Q_ALWAYS_INLINE void prefetch(quint32 position) const
    {
        __builtin_prefetch(_heads.data() + position);
    }

    /// The node of a tuple that `corner` has.
    quint32 find(quint32 position, const Indices &others, quint32 corner, NodeSupply &supply)
    {
        quint32 &head = _heads[position];
        quint32 first = load(head);
        for (;;) {
            unsigned length = 0;
            for (quint32 entry = first; entry != 0;) {
                Node<Others> &node = _nodes[entry - 1];
                if (areEqual(node.others, others)) {
                    raise(node.first, inverted(corner));
                    return entry - 1;
                }
                if (++length == FullLength)
                    return findInOverflow(position, others, corner);
                entry = node.next;
            }
            const quint32 fresh = newNode(position, others, corner, first, supply);
            if (__atomic_compare_exchange_n(&head, &first, fresh + 1, false, __ATOMIC_ACQ_REL,
                                            __ATOMIC_ACQUIRE)) {
                ++supply.next;
                return fresh;
            }
            _nodes[fresh].first = 0; // somebody was quicker: look again
        }
    }

    Nodes<Others> &nodes() { return _nodes; }

private:
    static constexpr unsigned FullLength = 16;

    /// In a loop: comparing arrays as a whole calls a function.
    static bool areEqual(const Indices &a, const Indices &b)
    {
        bool equal = true;
        for (unsigned i = 0; i < Others; ++i)
            equal = equal && a[i] == b[i];
        return equal;
    }

    quint32 newNode(quint32 position, const Indices &others, quint32 corner, quint32 next,
                    NodeSupply &supply)
    {
        if (supply.next == supply.end) {
            supply.next = _nodes.take();
            supply.end = supply.next + Nodes<Others>::TakenAtOnce;
        }
        _nodes[supply.next] = {next, inverted(corner), position, others};
        return static_cast<quint32>(supply.next);
    }

    Q_NEVER_INLINE quint32 findInOverflow(quint32 position, const Indices &others, quint32 corner)
    {
        const std::lock_guard<std::mutex> lock(_overflowMutex);
        const auto found = _overflow.find({position, others});
        if (found != _overflow.end()) {
            raise(_nodes[found->second].first, inverted(corner));
            return found->second;
        }
        const quint32 fresh = newNode(position, others, corner, 0, _overflowSupply);
        ++_overflowSupply.next;
        _overflow.emplace(std::make_pair(position, others), fresh);
        return fresh;
    }

    ZeroedArray<quint32> _heads; ///< per position 1 + the latest node
    Nodes<Others> _nodes;
    std::mutex _overflowMutex;
    std::map<std::pair<quint32, Indices>, quint32> _overflow;
    NodeSupply _overflowSupply;
};

template <unsigned Others>
void findNodes(SharedChains<Others> &chains, GrowArray<quint32> &corners, quint32 positionCount,
               const std::vector<CornerIndices> &others, Work &work, const PreparingSizes &sizes)
{
    constexpr size_t Ahead = 16;
    std::array<const quint32 *, Others> indicesOf;
    std::array<quint32, Others> nothing;
    for (unsigned i = 0; i < Others; ++i) {
        indicesOf[i] = others[i].indices.data();
        nothing[i] = others[i].valueCount;
    }
    const size_t count = corners.size();
    const quint32 *const positionOf = corners.data();
    quint32 *const nodeOf = corners.data(); // the same memory, behind what is read
    std::vector<NodeSupply> supplies(work.partCount());
    work.forEachInParts(
        Finding, count, sizes.elementsPerTask, [&](size_t part, size_t begin, size_t end) {
            NodeSupply supply = supplies[part];
            for (size_t corner = begin; corner < end; ++corner) {
                if (end - corner > Ahead)
                    chains.prefetch(std::min(positionOf[corner + Ahead], positionCount));
                std::array<quint32, Others> indices;
                for (unsigned i = 0; i < Others; ++i)
                    indices[i] = std::min(indicesOf[i][corner], nothing[i]);
                nodeOf[corner] = chains.find(std::min(positionOf[corner], positionCount), indices,
                                             static_cast<quint32>(corner), supply);
            }
            supplies[part] = supply;
        });
}

template <unsigned Others>
IndexTuples numberTuples(CornerIndices &&positions, std::vector<CornerIndices> &&others, Work &work,
                         const PreparingSizes &sizes)
{
    const size_t size = sizes.elementsPerTask;
    const size_t cornerCount = positions.indices.size();
    SharedChains<Others> chains(positions.valueCount, cornerCount, work.partCount());
    findNodes(chains, positions.indices, positions.valueCount, others, work, sizes);

    Nodes<Others> &nodes = chains.nodes();
    const auto forEachNode = [&](const StagePart &part, const auto &function) {
        work.forEachInParts(part, nodes.taken(), size, [&](size_t, size_t begin, size_t end) {
            for (size_t i = begin; i < end; ++i) {
                if (nodes[i].first != 0)
                    function(nodes[i], inverted(nodes[i].first));
            }
        });
    };
    FirstCorners firsts(cornerCount);
    forEachNode(Marking, [&](Node<Others> &, quint32 corner) { firsts.add(corner); });
    const quint32 count = firsts.count();

    IndexTuples tuples;
    tuples.positions.resize(count);
    for (CornerIndices &column : others) {
        tuples.others.push_back(std::move(column.indices));
        tuples.others.back().resize(count);
    }
    forEachNode(Numbering, [&](Node<Others> &node, quint32 corner) {
        const quint32 number = firsts.numberOf(corner);
        node.next = number;
        tuples.positions[number] = node.position;
        for (unsigned i = 0; i < Others; ++i)
            tuples.others[i][number] = node.others[i];
    });
    tuples.tupleOfCorner = std::move(positions.indices);
    work.forEachInParts(Renumbering, cornerCount, size, [&](size_t, size_t begin, size_t end) {
        for (size_t corner = begin; corner < end; ++corner)
            tuples.tupleOfCorner[corner] = nodes[tuples.tupleOfCorner[corner]].next;
    });
    tuples.reusable = std::move(nodes).intoMemory();
    return tuples;
}

/// Without other attributes: the positions in use.
IndexTuples numberPositions(CornerIndices &&positions, Work &work, const PreparingSizes &sizes)
{
    const size_t size = sizes.elementsPerTask;
    const size_t cornerCount = positions.indices.size();
    const quint32 nothing = positions.valueCount;
    const size_t positionCount = static_cast<size_t>(nothing) + 1;
    quint32 *const indices = positions.indices.data();
    ZeroedArray<quint32> firstOf(positionCount); // inverted corners; then numbers
    const auto forEachCorner = [&](const StagePart &part, const auto &function) {
        work.forEachInParts(part, cornerCount, size, [&](size_t, size_t begin, size_t end) {
            for (size_t corner = begin; corner < end; ++corner)
                function(static_cast<quint32>(corner), firstOf[std::min(indices[corner], nothing)]);
        });
    };
    forEachCorner(Finding, [](quint32 corner, quint32 &first) { raise(first, inverted(corner)); });

    FirstCorners firsts(cornerCount);
    const auto forEachFirst = [&](const StagePart &part, const auto &function) {
        work.forEachInParts(part, positionCount, size, [&](size_t, size_t begin, size_t end) {
            for (size_t position = begin; position < end; ++position) {
                if (firstOf[position] != 0)
                    function(static_cast<quint32>(position), firstOf[position]);
            }
        });
    };
    forEachFirst(Marking, [&](quint32, quint32 &first) { firsts.add(inverted(first)); });
    IndexTuples tuples;
    tuples.positions.resize(firsts.count());
    forEachFirst(Numbering, [&](quint32 position, quint32 &first) {
        first = firsts.numberOf(inverted(first));
        tuples.positions[first] = position;
    });
    forEachCorner(Renumbering, [&](quint32 corner, quint32 &number) { indices[corner] = number; });
    tuples.tupleOfCorner = std::move(positions.indices);
    tuples.reusable = std::move(firstOf).intoArray();
    return tuples;
}

} // namespace

IndexTuples numberIndexTuplesInParallel(CornerIndices &&positions,
                                        std::vector<CornerIndices> &&others, Work &work,
                                        const PreparingSizes &sizes)
{
    IndexTuples tuples;
    switch (others.size()) {
    case 0:
        tuples = numberPositions(std::move(positions), work, sizes);
        break;
    case 1:
        tuples = numberTuples<1>(std::move(positions), std::move(others), work, sizes);
        break;
    default:
        tuples = numberTuples<2>(std::move(positions), std::move(others), work, sizes);
    }
    tuples.reusable.resize(tuples.count());
    return tuples;
}

} // namespace Halvard::Orv
