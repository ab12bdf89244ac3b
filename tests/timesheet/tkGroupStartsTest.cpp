#include "timesheet/tkGroupStarts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

// The pending moves must never show: after any run of changes the values, and the group
// found for any row, are those of a plain vector changed value by value.
TEST(tkGroupStarts, PendingMovesReadAsIfEveryValueHadMoved) {
    for (uint32_t seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        auto pick = [&random](size_t n) { return static_cast<size_t>(random() % n); };
        std::vector<uint32_t> plain = {0, 3, 3, 7, 12, 20};
        tkGroupStarts lazy;
        lazy.assign(plain);
        for (int step = 0; step < 300; ++step) {
            const size_t i = pick(plain.size());
            // Mostly small moves at nearby places, as runs of row changes make them; sometimes
            // a value out of order, as a stale group vector has them.
            const uint32_t delta = pick(2) == 0 ? 1u : static_cast<uint32_t>(-1);
            switch (pick(4)) {
                case 0:
                    lazy.addFrom(i, delta);
                    std::for_each(plain.begin() + static_cast<long>(i), plain.end(),
                                  [delta](uint32_t& v) { v += delta; });
                    break;
                case 1:
                    lazy.addAt(i, delta);
                    plain[i] += delta;
                    break;
                case 2: {
                    const uint32_t value = plain[i] + static_cast<uint32_t>(pick(3));
                    lazy.insert(i, value);
                    plain.insert(plain.begin() + static_cast<long>(i), value);
                    break;
                }
                default:
                    if (plain.size() > 2) {
                        lazy.erase(i);
                        plain.erase(plain.begin() + static_cast<long>(i));
                    }
            }
            for (uint32_t row = 0; row < 25; ++row) {
                const auto next = std::find_if(plain.begin() + 1, plain.end(),
                                               [row](uint32_t start) { return start > row; });
                ASSERT_EQ(lazy.groupHolding(row), static_cast<size_t>(next - plain.begin()) - 1)
                    << "seed " << seed << " step " << step << " row " << row;
            }
        }
        EXPECT_EQ(lazy.values(), plain) << "seed " << seed;
    }
}

}  // namespace
