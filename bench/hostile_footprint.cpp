// Cost of lines and rings on hostile geometry: random points over the whole int range on a
// 40000 x 40000 canvas, a stroke of half-width INT_MAX and a ring of the same points. Prints the
// seconds of one AddLine and one AddRing call and the cells they leave.
//
// A third case is a zigzag ring whose edges run from one end of the int range to the other,
// rising 5,200 rows each: inside the canvas every edge crosses all columns a few subpixels high.
//
// Usage: kxac_hostile_footprint [line points] [ring points] [zigzag points]
// (1000000 each by default; 0 skips a case).
#include <chrono>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

#include "placement/AvoidContainer.h"

namespace {

constexpr int kCanvas = 40000;
constexpr uint32_t kSeed = 20261122;

std::vector<int> RandomPoints(long points, uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> any(INT_MIN, INT_MAX);
    std::vector<int> xy(2 * static_cast<size_t>(points));
    for (int& v : xy)
        v = any(rng);
    return xy;
}

// The cells of the object's runs, and a hash of every run (row, start, end) in order, so that
// two builds can be compared run by run.
std::pair<long long, uint64_t> Cells(const CAvoidObject& obj) {
    long long cells = 0;
    uint64_t hash = 14695981039346656037ull;
    auto mix = [&hash](int v) { hash = (hash ^ static_cast<uint32_t>(v)) * 1099511628211ull; };
    const CRLEIndexQuery& grid = obj.Grid();
    for (int row = grid.StartRow(); !grid.IsEmpty() && row <= grid.EndRow(); ++row) {
        for (const RLE& run : *grid.RowRuns(row)) {
            cells += static_cast<long long>(run.end) - run.start + 1;
            mix(row);
            mix(run.start);
            mix(run.end);
        }
    }
    return {cells, hash};
}

template <class Draw>
void Measure(const char* what, long points, Draw&& draw) {
    CPriorityAvoidContainer container;
    FitDeviceRect(*container.DT(), 0, 0, kCanvas, kCanvas);
    CAvoidObject* obj = container.NewObject();
    std::vector<int> xy = RandomPoints(points, kSeed);
    const auto start = std::chrono::steady_clock::now();
    draw(*obj, xy);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    const auto cells = Cells(*obj);
    std::printf("%-6s %8ld points  %10.3f s  %12lld cells  runs %016llx\n", what, points,
                took.count(), cells.first, static_cast<unsigned long long>(cells.second));
    container.Recycle(obj);
    container.Destroy();
}

}  // namespace

int main(int argc, char** argv) {
    const long linePoints = argc > 1 ? std::atol(argv[1]) : 1000000;
    const long ringPoints = argc > 2 ? std::atol(argv[2]) : 1000000;
    if (linePoints > 0) {
        Measure("line", linePoints, [](CAvoidObject& obj, std::vector<int>& xy) {
            obj.AddLine(xy.data(), static_cast<int>(xy.size()), INT_MAX);
        });
    }
    const long zigzagPoints = argc > 3 ? std::atol(argv[3]) : 1000000;
    if (ringPoints > 0) {
        Measure("ring", ringPoints, [](CAvoidObject& obj, std::vector<int>& xy) {
            obj.AddRing(xy.data(), static_cast<int>(xy.size()));
        });
    }
    if (zigzagPoints > 0) {
        Measure("zigzag", zigzagPoints, [](CAvoidObject& obj, std::vector<int>& xy) {
            for (size_t i = 0; i < xy.size(); i += 2) {
                xy[i] = (i / 2) % 2 == 0 ? INT_MIN : INT_MAX;
                xy[i + 1] = (i / 2) % 2 == 0 ? 7400 : 12600;
            }
            obj.AddRing(xy.data(), static_cast<int>(xy.size()));
        });
    }
    return 0;
}
