// Placement on canvases far beyond the rasterizer's 16-bit range: a scene moved by whole cells
// must be placed exactly as it was, and polygons drawn in tiles keep the cells of drawing them
// whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

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

}  // namespace
