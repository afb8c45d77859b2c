// The row's run vector keeps one run inside itself and moves to a block beyond that: random
// edits against std::vector, across that boundary and back, with copies, moves and swaps.
#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"

namespace {

std::vector<std::pair<int, int>> Fields(const RLERowRuns& runs) {
    std::vector<std::pair<int, int>> out;
    for (const RLE& r : runs)
        out.emplace_back(r.start, r.end);
    return out;
}

std::vector<std::pair<int, int>> Fields(const std::vector<RLE>& runs) {
    std::vector<std::pair<int, int>> out;
    for (const RLE& r : runs)
        out.emplace_back(r.start, r.end);
    return out;
}

TEST(RleRowRuns, RandomEditsMatchStdVector) {
    std::mt19937 rng(3);
    const auto uniform = [&](int lo, int hi) {
        return std::uniform_int_distribution<int>(lo, hi)(rng);
    };
    RLERowRuns runs, other;
    std::vector<RLE> model, otherModel;
    for (int step = 0; step < 20000; ++step) {
        const RLE run(uniform(-50, 50), uniform(-50, 50));
        const auto at = [&](size_t size) { return static_cast<size_t>(uniform(0, int(size))); };
        switch (uniform(0, 9)) {
            case 0:
            case 1: {
                const size_t i = at(model.size());
                runs.insert(runs.begin() + i, run);
                model.insert(model.begin() + static_cast<std::ptrdiff_t>(i), run);
                break;
            }
            case 2:
                if (!model.empty()) {
                    // An element of the vector itself, inserted into it.
                    const size_t i = at(model.size());
                    const size_t from = at(model.size() - 1);
                    runs.insert(runs.begin() + i, runs[from]);
                    model.insert(model.begin() + static_cast<std::ptrdiff_t>(i), model[from]);
                }
                break;
            case 3:
            case 4:
                if (!model.empty()) {
                    size_t a = at(model.size() - 1), b = at(model.size());
                    if (a > b) std::swap(a, b);
                    runs.erase(runs.begin() + a, runs.begin() + b);
                    model.erase(model.begin() + static_cast<std::ptrdiff_t>(a),
                                model.begin() + static_cast<std::ptrdiff_t>(b));
                }
                break;
            case 5:
                runs.push_back(run);
                model.push_back(run);
                break;
            case 6:
                if (uniform(0, 3) == 0) {
                    runs.clear();
                    model.clear();
                } else {
                    runs.assign(1, run);
                    model.assign(1, run);
                }
                break;
            case 7:
                runs.swap(other);
                model.swap(otherModel);
                break;
            case 8: {
                // Exchanged through a copy and a move.
                RLERowRuns copy(runs);
                RLERowRuns moved(std::move(other));
                other = copy;
                runs = std::move(moved);
                std::swap(model, otherModel);
                break;
            }
            default:
                if (!model.empty()) {
                    const size_t i = at(model.size() - 1);
                    runs.erase(runs.begin() + i);
                    model.erase(model.begin() + static_cast<std::ptrdiff_t>(i));
                }
                break;
        }
        ASSERT_EQ(Fields(runs), Fields(model)) << "step " << step;
        ASSERT_EQ(Fields(other), Fields(otherModel)) << "step " << step;
        ASSERT_GE(runs.capacity(), runs.size());
    }
}

}  // namespace
