#include "placement/Transform.h"

#include <cstdlib>

#include "placement/Geometry.h"

CGrowBuffer::~CGrowBuffer() {
    size = 0;
    if (capacity != 0) std::free(data);
}

bool CGrowBuffer::SetSize(uint32_t n) {
    if (n == size) return n == 0 || data != nullptr;
    size = n;
    if (n > capacity) {
        void* grown = capacity != 0 ? std::realloc(data, n) : std::malloc(n);
        if (grown == nullptr) {
            // The old block is released rather than leaked; callers see an empty buffer.
            if (capacity != 0) std::free(data);
            data = nullptr;
            size = capacity = 0;
            return false;
        }
        data = static_cast<unsigned char*>(grown);
        capacity = n;
    }
    return true;
}

void FitDeviceRect(CDT& dt, int left, int top, int right, int bottom) {
    dt.originX = left;
    dt.originY = top;
    dt.width = kxac::WrapSub(right, left);
    dt.height = kxac::WrapSub(bottom, top);
    FitMapExtent(dt, dt.minX, dt.minY, dt.maxX, dt.maxY);
}

void FitMapExtent(CDT& dt, double x1, double y1, double x2, double y2) {
    const double w = static_cast<double>(dt.width);
    const double h = static_cast<double>(dt.height);
    const double rx = (x2 - x1) / w;
    const double ry = (y2 - y1) / h;
    // ry also when the comparison is unordered (a NaN).
    dt.resolution = rx > ry ? rx : ry;
    const double cx = (x1 + x2) * 0.5;
    const double cy = (y1 + y2) * 0.5;
    const double half_w = w * dt.resolution * 0.5;
    const double half_h = h * dt.resolution * 0.5;
    dt.minX = cx - half_w;
    dt.maxX = cx + half_w;
    dt.minY = cy - half_h;
    dt.maxY = cy + half_h;
}

int MapToCellX(const CDT& dt, double mx) {
    return kxac::TruncToInt((mx - dt.minX) / dt.resolution + static_cast<double>(dt.originX));
}

int MapToCellY(const CDT& dt, double my) {
    return kxac::TruncToInt((dt.maxY - my) / dt.resolution + static_cast<double>(dt.originY));
}
