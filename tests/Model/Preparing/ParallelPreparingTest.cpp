// Models prepared by several threads in small tasks against the same models on one thread.
#include "support/MessageCapture.h"
#include "support/PlainGeometry.h"
#include "support/PlainModel.h"
#include "support/PlainModelInput.h"
#include "support/RandomModel.h"
#include "support/StreamContents.h"
#include "support/WorkThreads.h"

#include "Preparing/GeometryPreparing.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <thread>

namespace OrvTest {
namespace {

using namespace Halvard::Orv;

constexpr std::uint32_t Seed = 314159;
constexpr int ThreadCounts[] = {2, 3, 7, 16};

/// Everything that prepareGeometry() gives, as text and bits.
struct Prepared
{
    std::vector<std::string> lines;
    std::vector<Message> messages;
};

Prepared prepared(const PlainModel &model, const QStringList &groups, std::size_t textBytes,
                  Work *work, const PreparingSizes &sizes)
{
    Prepared result;
    const MessageCapture capture;
    OBJGeometry geometry = toGeometry(model);
    geometry.textBytes = textBytes;
    const PreparedGeometry prepared =
        prepareGeometry(std::move(geometry), groups, nullptr, work, sizes);
    for (const PreparedGeometry::Attribute &attribute : prepared.attributes) {
        result.lines.push_back(attribute.name.toStdString());
        result.lines.push_back(::testing::PrintToString(bitsOf(floats(attribute.values))));
    }
    if (prepared.indices)
        result.lines.push_back(::testing::PrintToString(uints(prepared.indices)));
    for (const PreparedGeometry::Command &command : prepared.commands)
        result.lines.push_back(command.group.toStdString() + ' ' +
                               std::to_string(command.firstIndex) + ' ' +
                               std::to_string(command.count));
    for (const UndrawnFaces &faces : {prepared.withTooFewCorners, prepared.notTriangulated})
        result.lines.push_back(std::to_string(faces.count) + " from " +
                               std::to_string(faces.first));
    result.messages = capture.messages();
    return result;
}

QStringList groupsOf(const PlainModel &model)
{
    QStringList groups;
    for (const auto &group : model.groups)
        groups.append(group.name);
    return groups;
}

PreparingSizes smallTasks(int faces, int elements)
{
    PreparingSizes sizes;
    sizes.threadsFromCorners = 0;
    sizes.facesPerTask = static_cast<quint32>(faces);
    sizes.elementsPerTask = static_cast<std::size_t>(elements);
    return sizes;
}

void expectSame(const PlainModel &model, const QStringList &groups, Dice &dice)
{
    for (const std::size_t textBytes : {std::size_t(0), std::numeric_limits<std::size_t>::max()}) {
        const Prepared expected = prepared(model, groups, textBytes, nullptr, {});
        for (const int threads : ThreadCounts) {
            const int faces = dice.between(1, 20);
            const int elements = dice.between(1, 100);
            SCOPED_TRACE(std::to_string(threads) + " threads, tasks of " + std::to_string(faces) +
                         " faces and " + std::to_string(elements) + " elements");
            WorkThreads crew(threads);
            crew.disturb(static_cast<std::uint32_t>(dice.below(1 << 30)));
            PreparingSizes sizes = smallTasks(faces, elements);
            // Too small for threads is prepared by one, also where a pool is at hand.
            for (const quint32 threadsFromCorners : {0u, std::numeric_limits<quint32>::max()}) {
                sizes.threadsFromCorners = threadsFromCorners;
                const Prepared found = prepared(model, groups, textBytes, &crew.work(), sizes);
                EXPECT_EQ(found.lines, expected.lines)
                    << "threads from " << threadsFromCorners << " corners on";
                EXPECT_EQ(found.messages, expected.messages);
            }
        }
    }
}

TEST(ParallelPreparing, GivesTheBitsOfOneThread)
{
    Dice dice(Seed);
    for (int i = 0; i < 150 && !::testing::Test::HasFailure(); ++i) {
        const PlainModel model = randomModel(dice);
        SCOPED_TRACE("model " + std::to_string(i));
        QStringList groups = groupsOf(model);
        expectSame(model, groups, dice);
        std::reverse(groups.begin(), groups.end());
        expectSame(model, groups, dice);
    }
}

/// A sheet of cells that share their vertices, some of them with a spike that is no number.
PlainModel sheet(Dice &dice, unsigned size, bool quads, bool shuffled)
{
    PlainModel model;
    PlainAttribute &positions = model.positions();
    for (unsigned y = 0; y <= size; ++y) {
        for (unsigned x = 0; x <= size; ++x) {
            const float height = dice.oneIn(200) ? std::numeric_limits<float>::quiet_NaN()
                                                 : static_cast<float>(dice.real(-0.2, 0.2));
            for (const float value : {static_cast<float>(x), static_cast<float>(y), height})
                positions.values.push_back(value);
        }
    }
    std::vector<unsigned> cells(std::size_t(size) * size);
    std::iota(cells.begin(), cells.end(), 0u);
    for (std::size_t i = cells.size(); shuffled && i > 1; --i)
        std::swap(cells[i - 1], cells[static_cast<std::size_t>(dice.below(static_cast<int>(i)))]);
    for (const unsigned cell : cells) {
        const unsigned corner = cell / size * (size + 1) + cell % size;
        const unsigned corners[] = {corner, corner + 1, corner + size + 2, corner + size + 1};
        if (quads) {
            positions.indices.insert(positions.indices.end(), corners, corners + 4);
            model.cornerCounts.push_back(4);
        } else {
            for (const int i : {0, 1, 2, 0, 2, 3})
                positions.indices.push_back(corners[i]);
            model.cornerCounts.insert(model.cornerCounts.end(), 2, 3);
        }
    }
    return model;
}

/// Gives the faces groups in turn, or all to one.
void group(PlainModel &model, std::size_t groups, std::size_t facesInARow)
{
    for (std::size_t number = 0; number < groups; ++number)
        model.groups.push_back({QString::number(number), {}, {}});
    for (std::size_t face = 0; face < model.cornerCounts.size(); ++face)
        model.groups[face / facesInARow % groups].faces.push_back(static_cast<unsigned>(face));
}

TEST(ParallelPreparing, AddsNormalsInTheOrderOfTheTriangles)
{
    Dice dice(Seed);
    for (const bool quads : {false, true}) {
        for (const bool shuffled : {false, true}) {
            for (const std::size_t groups : {1, 5}) {
                SCOPED_TRACE(std::string(quads ? "quads" : "triangles") +
                             (shuffled ? " in random order" : "") + ", groups " +
                             std::to_string(groups));
                PlainModel model = sheet(dice, 40, quads, shuffled);
                group(model, groups, 30);
                expectSame(model, groupsOf(model), dice);
            }
        }
    }
}

TEST(ParallelPreparing, LeavesThePoolAloneWhereAModelIsTooSmall)
{
    Dice dice(Seed);
    PlainModel model = sheet(dice, 40, true, false);
    group(model, 2, 30);
    WorkThreads crew(4);
    std::atomic<int> onOthers{0};
    std::atomic<int> onCaller{0};
    crew.work().setDisturbance([&, caller = std::this_thread::get_id()] {
        const bool isCaller = std::this_thread::get_id() == caller;
        const int before = (isCaller ? onCaller : onOthers)++;
        if (isCaller && before < 50) // so that others come if they are called
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    PreparingSizes sizes = smallTasks(10, 50);
    sizes.threadsFromCorners = static_cast<quint32>(4 * 40 * 40 + 1);
    prepared(model, groupsOf(model), 0, &crew.work(), sizes);
    EXPECT_GT(onCaller, 0);
    EXPECT_EQ(onOthers, 0);
    EXPECT_EQ(crew.work().threadCount(), 4u) << "the limit holds no longer than it should";
}

/// Also on one thread, which finds and compares index tuples in long loops.
TEST(ParallelPreparing, AsksTheCallbackThroughoutWelding)
{
    Dice dice(Seed);
    PlainModel model = sheet(dice, 500, true, false);
    group(model, 1, 1);
    for (const int threads : {1, 2}) {
        double before = 0.55; // where welding begins
        double largestStep = 0.0;
        WorkThreads crew(threads, [&](WorkStage stage, double fraction) {
            if (stage == WorkStage::Welding) {
                largestStep = std::max(largestStep, fraction - before);
                before = fraction;
            }
            return true;
        });
        PreparingSizes sizes;
        sizes.threadsFromCorners = std::numeric_limits<quint32>::max();
        prepared(model, groupsOf(model), 0, &crew.work(), sizes);
        EXPECT_NEAR(before, 0.79, 1e-9) << "where triangulating begins";
        EXPECT_LT(largestStep, 0.04) << threads << " threads, a sixth of welding";
    }
}

TEST(ParallelPreparing, StopsAtAnyCallOfTheCallback)
{
    Dice dice(Seed);
    PlainModel model = sheet(dice, 20, true, false);
    group(model, 2, 30);
    for (const int threads : {1, 2, 7}) {
        bool wasWhole = false;
        for (int last = 1; !wasWhole; last += 3) {
            int calls = 0;
            double before = 0.0;
            WorkThreads crew(threads, [&](WorkStage, double fraction) {
                EXPECT_GE(fraction, before);
                before = fraction;
                return ++calls < last;
            });
            try {
                prepared(model, groupsOf(model), 0, &crew.work(), smallTasks(10, 50));
                wasWhole = true;
                EXPECT_LT(calls, last);
                EXPECT_GT(calls, 0);
            } catch (const WorkStopped &) {
                EXPECT_EQ(calls, last);
            }
        }
    }
}

} // namespace
} // namespace OrvTest
