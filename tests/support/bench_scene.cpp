#include "bench_scene.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "test_support.h"

namespace kxbench {
namespace {

constexpr int kLabelHeight = 13;
constexpr int kClearance = 4;
constexpr int kWorldWidth = 8192;
constexpr int kWorldHeight = 4096;
constexpr int kPieceSpan = 48;

int Utf8Length(const std::string& s) {
    return static_cast<int>(
        std::count_if(s.begin(), s.end(), [](char ch) { return (ch & 0xC0) != 0x80; }));
}

// Calls f(first field, rest) on each line of a data file after its header that has a tab.
template <class F>
void ForEachLine(const char* name, F f) {
    const std::string path = std::string(KXAC_BENCH_DATA_DIR) + "/" + name;
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read " + path);
    std::string line;
    for (std::getline(in, line); std::getline(in, line);) {
        const size_t tab = line.find('\t');
        if (tab != std::string::npos) f(line.substr(0, tab), line.c_str() + tab + 1);
    }
}

std::vector<City> ReadCities() {
    std::vector<City> cities;
    ForEachLine("cities.tsv", [&](const std::string& name, const char* p) {
        char* end = nullptr;
        const double lon = std::strtod(p, &end);
        if (end != p && *end == '\t')
            cities.push_back({lon, std::strtod(end + 1, nullptr), Utf8Length(name)});
    });
    return cities;
}

std::vector<std::vector<double>> ReadPolylines(const char* name) {
    std::vector<std::vector<double>> lines;
    ForEachLine(name, [&](const std::string&, const char* p) {
        std::vector<double> lonLat;
        for (char* end = nullptr;; p = end) {
            const double lon = std::strtod(p, &end);
            if (end == p || *end != ',') break;
            lonLat.insert(lonLat.end(), {lon, std::strtod(end + 1, &end)});
        }
        if (lonLat.size() >= 4) lines.push_back(std::move(lonLat));
    });
    return lines;
}

int WorldX(double lon) {
    return static_cast<int>(std::lround((lon + 180.0) / 360.0 * kWorldWidth));
}
int WorldY(double lat) {
    return static_cast<int>(std::lround((90.0 - lat) / 180.0 * kWorldHeight));
}

Obstacle Dot(int x, int y) {
    return {{x - 1, y - 2, x + 2, y - 2, x + 3, y - 1, x + 3, y + 2, x + 2, y + 3, x - 1, y + 3,
             x - 2, y + 2, x - 2, y - 1},
            0};
}

void AddPieces(const std::vector<std::vector<double>>& lines, Scene& s) {
    for (const auto& lonLat : lines) {
        std::vector<int> xy;
        xy.reserve(lonLat.size());
        for (size_t i = 0; i + 1 < lonLat.size(); i += 2)
            xy.insert(xy.end(), {WorldX(lonLat[i]), WorldY(lonLat[i + 1])});
        for (auto& piece : SplitPolyline(xy, kPieceSpan))
            s.forced.push_back({std::move(piece), 1});
    }
}

}  // namespace

const MapData& WorldData() {
    static const MapData data{ReadCities(), ReadPolylines("borders.tsv"),
                              ReadPolylines("coastline.tsv")};
    return data;
}

Label LabelRightOf(int x, int y, int width) {
    const Box box(x + kClearance, y - kLabelHeight / 2, x + kClearance + width - 1,
                  y - kLabelHeight / 2 + kLabelHeight - 1);
    const int centred = x - width / 2 - box.left;
    return {box,
            {Location(-width - 2 * kClearance, 0),
             Location(centred, y - kClearance - kLabelHeight - box.top),
             Location(centred, y + kClearance - box.top)}};
}

std::vector<std::vector<int>> SplitPolyline(const std::vector<int>& xy, int maxSpan) {
    std::vector<std::vector<int>> pieces;
    std::vector<int> piece;
    Box span;  // of the piece with the next point
    for (size_t i = 0; i + 1 < xy.size(); i += 2) {
        const size_t n = piece.size();
        if (n >= 2 && piece[n - 2] == xy[i] && piece[n - 1] == xy[i + 1]) continue;
        const Box point(xy[i], xy[i + 1], xy[i], xy[i + 1]);
        span = n == 0 ? point : span;
        span.Union(point);
        if (n >= 4 && (static_cast<long long>(span.right) - span.left > maxSpan ||
                       static_cast<long long>(span.bottom) - span.top > maxSpan)) {
            pieces.push_back(piece);
            piece.erase(piece.begin(), piece.end() - 2);
            span = Box(piece[0], piece[1], piece[0], piece[1]);
            span.Union(point);
        }
        piece.insert(piece.end(), {xy[i], xy[i + 1]});
    }
    if (piece.size() >= 4) pieces.push_back(piece);
    return pieces;
}

Scene WorldCities(int cities) {
    const MapData& data = WorldData();
    size_t n = data.cities.size();
    if (cities > 0) n = std::min(n, static_cast<size_t>(cities));
    Scene s{kWorldWidth, kWorldHeight, {}, {}};
    for (size_t i = 0; i < n; ++i) {
        const int x = WorldX(data.cities[i].lon), y = WorldY(data.cities[i].lat);
        s.forced.push_back(Dot(x, y));
        s.labels.push_back(LabelRightOf(x, y, 7 * data.cities[i].nameLength + 2));
    }
    AddPieces(data.borders, s);
    AddPieces(data.coast, s);
    return s;
}

void FitToScene(CAvoidContainer& c, const Scene& s) {
    FitDeviceRect(*c.DT(), 0, 0, s.width, s.height);
    FitMapExtent(*c.DT(), 0.0, 0.0, s.width, s.height);
}

void AddLabel(CAvoidContainer& c, const Label& l, long long id) {
    CAvoidObject* obj = c.NewObject();
    const Box& b = l.box;
    obj->ID(id);
    testing_support::AddCellBox(*obj, b);
    auto& offsets = obj->OffsetCollection();
    offsets.insert(offsets.end(), l.offsets.begin(), l.offsets.end());
    c.Add(obj, false);
}

}  // namespace kxbench
