#include "timesheet/tkGapBuffer.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

// Wherever the gap happens to be, the buffer reads as the plain vector that had the same
// insertions and removals, and hands back the very element it removed.
TEST(tkGapBuffer, ReadsAsAVectorWhereverTheGapIs) {
    std::mt19937 random(7);
    auto pick = [&random](size_t n) { return static_cast<size_t>(random() % n); };
    std::vector<std::shared_ptr<int>> plain;
    tkGapBuffer<std::shared_ptr<int>> buffer;
    for (int step = 0; step < 2000; ++step) {
        if (plain.empty() || pick(3) != 0) {
            const size_t at = pick(plain.size() + 1);
            auto value = std::make_shared<int>(step);
            plain.insert(plain.begin() + static_cast<long>(at), value);
            buffer.insert(at, value);
        } else {
            const size_t at = pick(plain.size());
            EXPECT_EQ(buffer.erase(at), plain[at]);
            plain.erase(plain.begin() + static_cast<long>(at));
        }
        ASSERT_EQ(buffer.size(), plain.size());
        if (!plain.empty()) {
            const size_t at = pick(plain.size());
            ASSERT_EQ(buffer[at], plain[at]) << "step " << step;
        }
    }
    EXPECT_EQ(buffer.toVector(), plain);
    const auto all = buffer.contiguous();
    EXPECT_EQ(std::vector<std::shared_ptr<int>>(all.begin(), all.end()), plain);
    EXPECT_THROW(buffer.at(plain.size()), std::out_of_range);
}

}  // namespace
