#include "onenote/ordered_pipeline.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

namespace qm::onenote {
namespace {

struct Shape {
    unsigned workers;
    std::size_t window;
};

constexpr Shape kShapes[] = {{0, 0}, {1, 1}, {2, 0}, {3, 2}, {4, 7}};

// Work that takes longer for some items, so that later items finish first.
int SlowSquare(int i) {
    std::this_thread::sleep_for(std::chrono::microseconds((i * 7 % 5) * 200));
    return i * i;
}

TEST(OrderedPipelineTest, ResultsInOrderSourceOnCallerWithinTheWindow) {
    for (const Shape shape : kShapes) {
        SCOPED_TRACE(testing::Message() << shape.workers << " workers, window " << shape.window);
        const std::size_t window = shape.window != 0 ? shape.window : 2 * shape.workers;
        const auto caller = std::this_thread::get_id();
        constexpr std::size_t kCount = 40;
        std::size_t taken = 0;
        std::size_t nextSource = 0;
        std::atomic<int> onCaller{0};
        OrderedPipeline<int, int> pipeline(
            kCount,
            [&](std::size_t i) {
                EXPECT_EQ(std::this_thread::get_id(), caller);
                EXPECT_EQ(i, nextSource++);
                if (shape.workers == 0) {
                    EXPECT_EQ(i, taken);
                } else {
                    EXPECT_LT(i, taken + window);
                }
                return static_cast<int>(i);
            },
            [&](int i) {
                if (std::this_thread::get_id() == caller) ++onCaller;
                return SlowSquare(i);
            },
            shape.workers, shape.window);
        for (std::size_t i = 0; i < kCount; ++i, ++taken) EXPECT_EQ(pipeline.Next(), static_cast<int>(i * i));
        EXPECT_EQ(nextSource, kCount);
        EXPECT_EQ(onCaller, shape.workers == 0 ? static_cast<int>(kCount) : 0);
    }
}

TEST(OrderedPipelineTest, OneItemRunsOnTheCaller) {
    const auto caller = std::this_thread::get_id();
    OrderedPipeline<int, std::thread::id> pipeline(
        1, [](std::size_t) { return 0; }, [](int) { return std::this_thread::get_id(); }, 4);
    EXPECT_EQ(pipeline.Next(), caller);
}

// A failure in the source or the work reaches the caller at the failing item, after every item
// before it; the source is not asked for items after a failing one.
TEST(OrderedPipelineTest, FailuresSurfaceAtTheirItem) {
    constexpr std::size_t kFailing = 7;
    for (const bool inSource : {true, false}) {
        for (const Shape shape : kShapes) {
            SCOPED_TRACE(testing::Message() << (inSource ? "source" : "work") << ", " << shape.workers << " workers");
            std::size_t highestSource = 0;
            auto fail = [](std::size_t i) { throw std::runtime_error(std::to_string(i)); };
            OrderedPipeline<int, int> pipeline(
                20,
                [&](std::size_t i) {
                    highestSource = i;
                    if (inSource && i == kFailing) fail(i);
                    return static_cast<int>(i);
                },
                [&](int i) {
                    if (!inSource && static_cast<std::size_t>(i) == kFailing) fail(i);
                    return SlowSquare(i);
                },
                shape.workers, shape.window);
            for (std::size_t i = 0; i < kFailing; ++i) EXPECT_EQ(pipeline.Next(), static_cast<int>(i * i));
            try {
                pipeline.Next();
                ADD_FAILURE() << "no exception";
            } catch (const std::runtime_error& e) {
                EXPECT_EQ(std::string(e.what()), std::to_string(kFailing));
            }
            if (inSource) {
                EXPECT_EQ(highestSource, kFailing);
            }
            // Leaving with items in flight waits for the workers and drops their results.
        }
    }
}

}  // namespace
}  // namespace qm::onenote
