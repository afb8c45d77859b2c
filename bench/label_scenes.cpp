#include "label_scenes.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace kxbench {
namespace {

constexpr int kWorldWidth = 8192;
constexpr int kWorldHeight = 4096;
constexpr int kPieceSpan = 48;
constexpr int kLineHalfWidth = 1;
constexpr int kCharWidth = 7;
constexpr int kLabelMargin = 2;
constexpr double kCellsPerLabel = 2400.0;

// Round half up, as java.lang.Math.round does (floor(v + 0.5) can round 0.49999999999999994 up).
long long RoundHalfUp(double v) {
    const double f = std::floor(v);
    return static_cast<long long>(f) + (v - f >= 0.5 ? 1 : 0);
}

// The world projection of the Java demo for the whole globe: one scale for both axes, the
// canvas centre at (0, 0) degrees.
constexpr double kUnitsPerCell = 360.0 / kWorldWidth;
double WorldX(double lon) { return lon / kUnitsPerCell + kWorldWidth / 2.0; }
double WorldY(double lat) { return (0.0 - lat) / kUnitsPerCell + kWorldHeight / 2.0; }
int ToCell(double v) {
    const double limit = 1 << 22;
    return static_cast<int>(RoundHalfUp(std::max(-limit, std::min(limit, v))));
}

// Each polyline's vertices as cells of the world canvas.
std::vector<std::vector<int>> WorldPolylines(const std::vector<std::vector<double>>& lines) {
    std::vector<std::vector<int>> cells;
    for (const std::vector<double>& lonLat : lines) {
        std::vector<int> xy;
        for (size_t i = 0; i + 1 < lonLat.size(); i += 2)
            xy.insert(xy.end(), {ToCell(WorldX(lonLat[i])), ToCell(WorldY(lonLat[i + 1]))});
        cells.push_back(std::move(xy));
    }
    return cells;
}

// java.util.Random: the 48-bit linear congruential generator and its nextInt(bound).
class JavaRandom {
public:
    explicit JavaRandom(int64_t seed)
        : m_seed((static_cast<uint64_t>(seed) ^ kMultiplier) & kMask) {}

    int NextInt(int bound) {
        int r = Next31();
        const int m = bound - 1;
        if ((bound & m) == 0) {
            return static_cast<int>((static_cast<int64_t>(bound) * r) >> 31);
        }
        for (int u = r;; u = Next31()) {
            r = u % bound;
            if (static_cast<int64_t>(u) - r + m <= INT32_MAX) return r;
        }
    }

private:
    static constexpr uint64_t kMultiplier = 0x5DEECE66DULL;
    static constexpr uint64_t kMask = (1ULL << 48) - 1;

    int Next31() {
        m_seed = (m_seed * kMultiplier + 0xBULL) & kMask;
        return static_cast<int>(m_seed >> 17);
    }

    uint64_t m_seed;
};

}  // namespace

bool LabelAround(double px, double py, int width, int height, double clearance, int canvasWidth,
                 int canvasHeight, Label& label) {
    const double diag = clearance * std::sqrt(0.5);
    const double h2 = height / 2.0;
    const double corners[8][2] = {
        {px + clearance, py - h2},
        {px - clearance - width, py - h2},
        {px - width / 2.0, py - clearance - height},
        {px - width / 2.0, py + clearance},
        {px + diag, py - diag - height},
        {px + diag, py + diag},
        {px - diag - width, py - diag - height},
        {px - diag - width, py + diag},
    };
    bool first = true;
    label.offsets.clear();
    for (const auto& corner : corners) {
        const long long left = RoundHalfUp(corner[0]);
        const long long top = RoundHalfUp(corner[1]);
        if (top < 0 || top + height > canvasHeight || left < 0 || left + width > canvasWidth) {
            continue;
        }
        if (first) {
            label.box = Box(static_cast<int>(left), static_cast<int>(top),
                            static_cast<int>(left) + width - 1, static_cast<int>(top) + height - 1);
            first = false;
        } else {
            label.offsets.emplace_back(static_cast<int>(left - label.box.left),
                                       static_cast<int>(top - label.box.top));
        }
    }
    return !first;
}

size_t WorldCityCount() { return WorldData().cities.size(); }

Scene WorldCandidateLabels(bool withLines) {
    Scene s;
    s.width = kWorldWidth;
    s.height = kWorldHeight;
    const std::vector<City>& cities = WorldData().cities;
    s.labels.reserve(cities.size());
    for (const City& c : cities) {
        Label l;
        const int width = kCharWidth * c.nameLength + kLabelMargin;
        if (LabelAround(WorldX(c.lon), WorldY(c.lat), width, kCandidateLabelHeight,
                        kCandidateClearance, s.width, s.height, l)) {
            s.labels.push_back(std::move(l));
        }
    }
    if (withLines) {
        for (const auto* lines : {&WorldData().borders, &WorldData().coast}) {
            for (const auto& xy : WorldPolylines(*lines)) {
                for (auto& piece : SplitPolyline(xy, kPieceSpan))
                    s.forced.push_back({std::move(piece), kLineHalfWidth});
            }
        }
    }
    return s;
}

Scene UniformCandidateLabels(int n, int width, int height, uint32_t seed) {
    Scene s;
    s.width = width;
    s.height = height;
    s.labels.reserve(static_cast<size_t>(n));
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> x(0, width - 1), y(0, height - 1), w(24, 96);
    for (int i = 0; i < n; ++i) {
        const int px = x(rng), py = y(rng), lw = w(rng);
        Label l;
        if (LabelAround(px, py, lw, kCandidateLabelHeight, kCandidateClearance, width, height, l))
            s.labels.push_back(std::move(l));
    }
    return s;
}

Scene JavaUniformLabels(int n, int64_t seed) {
    Scene s;
    const int side = static_cast<int>(std::ceil(std::sqrt(n * kCellsPerLabel)));
    s.width = side;
    s.height = side;
    s.labels.reserve(static_cast<size_t>(n));
    JavaRandom rng(seed);
    const int h = kCandidateLabelHeight;
    const int c = kCandidateClearance;
    for (int i = 0; i < n; ++i) {
        const int px = rng.NextInt(side);
        const int py = rng.NextInt(side);
        const int w = 24 + rng.NextInt(73);
        // Right of the point, left, above, below; those that fit the canvas.
        const Location corners[] = {{px + c, py - h / 2},
                                    {px - c - w, py - h / 2},
                                    {px - w / 2, py - c - h},
                                    {px - w / 2 + 1, py + c}};
        Label l;
        bool first = true;
        for (const Location& at : corners) {
            if (at.x < 0 || at.x + w > side || at.y < 0 || at.y + h > side) continue;
            if (first) {
                l.box = Box(at.x, at.y, at.x + w - 1, at.y + h - 1);
                first = false;
            } else {
                l.offsets.emplace_back(at.x - l.box.left, at.y - l.box.top);
            }
        }
        if (!first) s.labels.push_back(std::move(l));
    }
    return s;
}

}  // namespace kxbench
