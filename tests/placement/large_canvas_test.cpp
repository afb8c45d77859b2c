// Placement on canvases far beyond the rasterizer's 16-bit range: a scene moved by whole cells
// must be placed exactly as it was, and rectangle labels of the world's cities on a zoom-level
// canvas as a plain rectangle placer places them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "bench_scene.h"
#include "test_support.h"

namespace {

// One object of a scene: a ring (width 0) or a stroked line, maybe a box, candidate offsets.
struct Shape {
    std::vector<int> xy;
    int width = 0;
    bool box = false;
    std::vector<Location> offsets;
    bool forced = false;
};

// Dense collisions on a w x h canvas: label rectangles, lines of several widths, triangles and
// bow ties, a box now and then, offsets of up to 40 cells, a forced object in ten. Every shape
// keeps 8 cells from the edges, so nothing is clipped.
std::vector<Shape> RandomScene(uint32_t seed, int w, int h) {
    testing_support::Random any{std::mt19937(seed)};
    std::vector<Shape> scene(400);
    for (Shape& s : scene) {
        const int kind = any(0, 3);
        const auto x = [&] { return any(8, w - 8); };
        const auto y = [&] { return any(8, h - 8); };
        const int x0 = any(8, w - 60), y0 = any(8, h - 20);
        if (kind == 0)
            s.xy = {
                x0, y0, x0 + any(1, 50), y0, x0 + any(1, 50), y0 + any(1, 12), x0, y0 + any(1, 12)};
        if (kind == 1) s.xy = {x(), y(), x(), y(), x(), y()};
        if (kind == 2) s.xy = {x0, y0, x0 + 30, y0 + 12, x0 + 30, y0, x0, y0 + 12};
        if (kind == 3) s.xy = {x(), y(), x(), y()};
        const int widths[] = {1, 2, 3, 7};
        s.width = kind == 3 ? widths[any(0, 3)] : 0;
        s.box = any(0, 7) == 0;
        for (int k = any(0, 3); k > 0; --k)
            s.offsets.emplace_back(any(-40, 40), any(-40, 40));
        s.forced = any(0, 9) == 0;
    }
    return scene;
}

// The scene moved by (d, d) on a canvas d cells wider and higher, placed; what it gives moved
// back: the placed and unplaced lists (id@offset) and the runs of every object.
std::string Place(const std::vector<Shape>& scene, int w, int h, int d) {
    CPriorityAvoidContainer c;
    testing_support::SetCanvas(*c.DT(), static_cast<long long>(w) + d,
                               static_cast<long long>(h) + d);
    std::vector<CAvoidObject*> objs;
    for (const Shape& s : scene) {
        CAvoidObject* obj = c.NewObject();
        obj->ID(static_cast<long long>(objs.size()));
        std::vector<int> xy = s.xy;
        for (int& v : xy)
            v += d;
        testing_support::Draw(*obj, xy, s.width);
        if (s.box) obj->AddBox(Box(xy[0], xy[1], xy[0] + 9, xy[1] + 9));
        obj->OffsetCollection().insert(obj->OffsetCollection().end(), s.offsets.begin(),
                                       s.offsets.end());
        c.Add(obj, s.forced);
        objs.push_back(obj);
    }
    std::string out = testing_support::ListsText(c);
    for (const CAvoidObject* o : objs)
        out += testing_support::RunsText(*o, d, d) + "\n";
    return out;
}

TEST(LargeCanvas, SceneMovedByWholeCellsIsPlacedTheSame) {
    const int w = 300, h = 200;
    for (uint32_t seed = 1; seed <= 12; ++seed) {
        const std::vector<Shape> scene = RandomScene(seed, w, h);
        const std::string here = Place(scene, w, h, 0);
        // The scenes collide: many rejected, many placed.
        const std::string unplaced = here.substr(here.find('\n') + 1);
        ASSERT_GT(std::count(unplaced.begin(), unplaced.begin() + unplaced.find('\n'), '@'), 80);
        for (const int d : {40000, 1000000, (1 << 29) - 4096}) {
            EXPECT_EQ(Place(scene, w, h, d), here) << "seed " << seed << ", moved by " << d;
        }
    }
}

// Shapes larger than the rasterizer's range are drawn in tiles of 32,000 columns by 65,000 rows:
// a triangle and a long diagonal stroke across the seams, moved by whole cells so that the seams
// cut them elsewhere, keep their cells, moved.
TEST(LargeCanvas, ShapesLargerThanTheRangeKeepTheirCellsAcrossTileSeams) {
    const std::pair<std::vector<int>, int> shapes[] = {{{10, 10, 95000, 30, 40000, 99000}, 0},
                                                       {{50, 99900, 99900, 50}, 3}};
    for (const auto& [shape, width] : shapes) {
        std::string rows[2];
        for (const int move : {0, 1}) {
            const int dx = 12345 * move, dy = 23456 * move;
            testing_support::CanvasObject c(100000 + dx, 100000 + dy);
            std::vector<int> xy = shape;
            for (size_t i = 0; i < xy.size(); ++i)
                xy[i] += i % 2 == 0 ? dx : dy;
            testing_support::Draw(c.obj, xy, width);
            rows[move] = testing_support::RunsText(c.obj, dx, dy);
        }
        // Convex shapes: one run a row, from the first row to the last.
        EXPECT_EQ(std::count(rows[0].begin(), rows[0].end(), '-'),
                  std::count(rows[0].begin(), rows[0].end(), '\n'));
        EXPECT_TRUE(rows[0] == rows[1]) << "moved shape differs";
    }
}

// Drawing in tiles is exact: random rings, bow ties and strokes, partly off the canvas, drawn in
// tiles of 1 to 16 cells give the runs of drawing them whole.
TEST(LargeCanvas, TilesGiveTheCellsOfTheWholePolygon) {
    testing_support::Random any{std::mt19937(77)};
    for (int round = 0; round < 300; ++round) {
        std::vector<int> xy(static_cast<size_t>(2 * any(2, 8)));
        for (size_t i = 0; i < xy.size(); ++i)
            xy[i] = any(-40, i % 2 == 0 ? 240 : 190);
        const int width = any(0, 7);
        std::string runs[2];
        for (const int tiles : {0, any(1, 16)}) {
            testing_support::CanvasObject c(200, 150);
            c.dt.footprint.tileCells = tiles;
            testing_support::Draw(c.obj, xy, width);
            runs[tiles > 0] = testing_support::RunsText(c.obj);
        }
        ASSERT_EQ(runs[0], runs[1]) << "seed 77, round " << round;
    }
}

// A label of the world canvas: its rectangle at each candidate.
using CityLabel = std::vector<Box>;

// The labels of every city on an equirectangular canvas of 65,536 x 32,768 cells: 7 cells per
// character plus 2 by 13, at eight places around the point, those off the canvas left out.
std::vector<CityLabel> WorldLabels(int width, int height) {
    std::vector<CityLabel> labels;
    for (const kxbench::City& c : kxbench::WorldData().cities) {
        const int px = static_cast<int>(std::floor((c.lon + 180.0) / 360.0 * width));
        const int py = static_cast<int>(std::floor((90.0 - c.lat) / 360.0 * width));
        const int lw = 7 * c.nameLength + 2, lh = 13;
        const int at[8][2] = {{px + 4, py - 6},           {px - 4 - lw, py - 6},
                              {px - lw / 2, py - 4 - lh}, {px - lw / 2, py + 4},
                              {px + 3, py - 3 - lh},      {px + 3, py + 3},
                              {px - 3 - lw, py - 3 - lh}, {px - 3 - lw, py + 3}};
        CityLabel l;
        for (const auto& p : at) {
            if (p[0] >= 0 && p[1] >= 0 && p[0] + lw <= width && p[1] + lh <= height)
                l.emplace_back(p[0], p[1], p[0] + lw - 1, p[1] + lh - 1);
        }
        if (!l.empty()) labels.push_back(l);
    }
    return labels;
}

// The plain placer: placed rectangles filed in square buckets, each candidate tested against the
// rectangles of the buckets it meets, the first free one taken. The chosen candidate per label,
// -1 for none.
std::vector<int> PlaceRectangles(const std::vector<CityLabel>& labels, int width, int height) {
    const int shift = 8;
    const int columns = (width >> shift) + 1;
    std::vector<std::vector<Box>> buckets(static_cast<size_t>(columns) * ((height >> shift) + 1));
    const auto each = [&](const Box& b, auto&& visit) {
        for (int y = b.top >> shift; y <= b.bottom >> shift; ++y)
            for (int x = b.left >> shift; x <= b.right >> shift; ++x)
                if (visit(buckets[static_cast<size_t>(y) * columns + x])) return true;
        return false;
    };
    std::vector<int> chosen;
    for (const CityLabel& l : labels) {
        const auto free = std::find_if(l.begin(), l.end(), [&](const Box& b) {
            return !each(b, [&](const std::vector<Box>& bucket) {
                return std::any_of(bucket.begin(), bucket.end(),
                                   [&](const Box& p) { return p.IsIntersect(b); });
            });
        });
        if (free != l.end())
            each(*free, [&](std::vector<Box>& bucket) {
                bucket.push_back(*free);
                return false;
            });
        chosen.push_back(free == l.end() ? -1 : static_cast<int>(free - l.begin()));
    }
    return chosen;
}

}  // namespace

TEST(LargeCanvas, WorldCitiesOnAZoomLevelCanvasMatchAPlainRectanglePlacer) {
    const int width = 65536, height = 32768;
    const std::vector<CityLabel> labels = WorldLabels(width, height);
    const std::vector<int> expected = PlaceRectangles(labels, width, height);
    CPriorityAvoidContainer c;
    testing_support::SetCanvas(*c.DT(), width, height);
    std::vector<int> chosen;
    for (const CityLabel& l : labels) {
        CAvoidObject* obj = c.NewObject();
        const Box& b = l[0];
        testing_support::AddCellBox(*obj, b);
        for (size_t k = 1; k < l.size(); ++k)
            obj->OffsetCollection().emplace_back(l[k].left - b.left, l[k].top - b.top);
        c.Add(obj, false);
        const std::vector<Location>& at = obj->OffsetCollection();
        const auto pick = std::find(at.begin(), at.end(), obj->Offset()) - at.begin();
        chosen.push_back(obj->PlacedState() == CAvoidObject::kPlaced ? int(pick) : -1);
    }
    ASSERT_EQ(chosen.size(), expected.size());
    const auto first = std::mismatch(chosen.begin(), chosen.end(), expected.begin());
    EXPECT_TRUE(first.first == chosen.end()) << "label " << first.first - chosen.begin();
    // Many labels placed east of column 32,768, and many rejected: a fault there would show.
    long long east = 0;
    for (size_t i = 0; i < labels.size(); ++i)
        east += expected[i] >= 0 && labels[i][expected[i]].left > 32768;
    EXPECT_GT(east, 10000);
    EXPECT_GT(std::count(expected.begin(), expected.end(), -1), 20000);
}
