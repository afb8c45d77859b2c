// Integer geometry of the placement: cells, offsets and rectangles of cells.
//
// Coordinates are raster cells, x to the right (columns) and y downwards (rows). Arithmetic is
// 32-bit and wraps on overflow, as two's complement hardware does.
#pragma once

#include <cstdint>

#include "stdafx.h"

// A cell position or an offset. The default is (0, 0).
struct KXAC_API Location {
    int x = 0;
    int y = 0;

    Location() = default;
    Location(int x_, int y_) : x(x_), y(y_) {}

    Location Offset(int dx, int dy) const { return {kxac::WrapAdd(x, dx), kxac::WrapAdd(y, dy)}; }
    Location Offset(const Location& l) const { return Offset(l.x, l.y); }
    Location RevOffset(int dx, int dy) const {
        return {kxac::WrapSub(x, dx), kxac::WrapSub(y, dy)};
    }
    Location RevOffset(const Location& l) const { return RevOffset(l.x, l.y); }

    bool operator==(const Location& o) const { return x == o.x && y == o.y; }
    bool operator!=(const Location& o) const { return !(*this == o); }
};

// A rectangle of cells, inclusive on all sides. The default is the empty box (1, 1, -1, -1),
// which is not valid and from which every extent starts. No operation normalises a box.
struct KXAC_API Box {
    int left = 1;
    int top = 1;
    int right = -1;
    int bottom = -1;

    Box() = default;
    Box(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}

    // Field-wise overlap; two disjoint boxes give an invalid box.
    Box Intersect(const Box& o) const {
        return {left > o.left ? left : o.left, top > o.top ? top : o.top,
                right < o.right ? right : o.right, bottom < o.bottom ? bottom : o.bottom};
    }
    // Field-wise min/max in place. An empty operand is not skipped: the union of the empty box
    // with a box right of and below cell (1, 1) stretches that box out to cell (1, 1).
    void Union(const Box& o) {
        if (o.left < left) left = o.left;
        if (o.top < top) top = o.top;
        if (o.right > right) right = o.right;
        if (o.bottom > bottom) bottom = o.bottom;
    }
    Box Offset(int dx, int dy) const {
        return {kxac::WrapAdd(left, dx), kxac::WrapAdd(top, dy), kxac::WrapAdd(right, dx),
                kxac::WrapAdd(bottom, dy)};
    }
    Box Offset(const Location& l) const { return Offset(l.x, l.y); }
    Box RevOffset(int dx, int dy) const {
        return {kxac::WrapSub(left, dx), kxac::WrapSub(top, dy), kxac::WrapSub(right, dx),
                kxac::WrapSub(bottom, dy)};
    }
    Box RevOffset(const Location& l) const { return RevOffset(l.x, l.y); }

    int Width() const { return kxac::WrapAdd(kxac::WrapSub(right, left), 1); }
    int Height() const { return kxac::WrapAdd(kxac::WrapSub(bottom, top), 1); }
    // Each coordinate is the 32-bit sum halved with truncation toward zero.
    Location Center() const {
        return {kxac::WrapAdd(left, right) / 2, kxac::WrapAdd(top, bottom) / 2};
    }

    // A pure comparison of the four bounds; validity plays no part.
    bool IsDisjoin(const Box& o) const {
        return o.left > right || o.right < left || o.top > bottom || o.bottom < top;
    }
    // Closed overlap: boxes sharing only an edge cell intersect.
    bool IsIntersect(const Box& o) const { return !IsDisjoin(o); }
    bool IsValid() const { return right >= left && bottom >= top; }

    bool operator==(const Box& o) const {
        return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
    }
    bool operator!=(const Box& o) const { return !(*this == o); }
};

// A rectangle in map units: (x1, y1) becomes a box's (left, top), (x2, y2) its (right, bottom).
struct KXAC_API Envelope {
    double x1 = 0.0;
    double y1 = 0.0;
    double x2 = 0.0;
    double y2 = 0.0;
};
