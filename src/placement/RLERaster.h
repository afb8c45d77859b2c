// The raster target of an avoid object's footprint.
//
// The target owns no pixels. Its width and height are the canvas size of the attached transform
// and serve only as the sweep's clip bounds; row(y) returns a row record naming the row and this
// raster's run sink, so every clipped span of a sweep arrives at AddRLE(row, first, last).
#pragma once

#include <cstdint>

#include "placement/Transform.h"
#include "raster/agg.h"

// Receives runs of occupied cells: one row, both ends inclusive, first <= last.
class CRLECreate {
public:
    virtual ~CRLECreate();
    virtual void AddRLE(int row, int first, int last) = 0;
};

// Abstract: the derived object supplies AddRLE. Draws with gamma 1.3 and the even-odd rule, with
// the rasterizer of the attached transform: the raster itself keeps only its size, the transform
// and the count of cell blocks its polygons have used (the rasterizer's limit is per raster).
class CRLERaster : private agg::rendering_buffer, public CRLECreate {
public:
    CRLERaster();
    ~CRLERaster() override;
    CRLERaster(const CRLERaster&) = delete;
    CRLERaster& operator=(const CRLERaster&) = delete;

    // The record that the next row() call overwrites; used at once by the sweep.
    unsigned char* row(unsigned y) override;

    virtual CDT* DT();
    // Attaches a transform (or null), then calls OnResizeConvas() through the virtual table. The
    // rasterizer draws through the transform's scratch memory while one is attached.
    virtual void DT(CDT* dt);
    // The canvas size: the low 32 bits of the transform's width and height, or 0x7FFFFFFF each
    // without a transform.
    virtual void OnResizeConvas();

protected:
    using agg::rendering_buffer::height;
    using agg::rendering_buffer::width;

    // The transform's rasterizer, set for this raster; a transform must be attached. The polygon
    // drawn into its outline must be swept before another raster asks for it.
    agg::rasterizer& Rasterizer();
    // Sweeps the rasterizer's current outline into this raster: each clipped span goes to
    // AddRLE, shifted and cut to the window. Nothing happens when the outline holds no cells.
    void Sweep(const agg::emit_window& window = agg::emit_window());
    // The same into another target, whose width and height clip the spans instead.
    void Sweep(agg::rendering_buffer& target, const agg::emit_window& window);
    // Whether a polygon of this raster once used every cell block the rasterizer allows: no
    // later polygon stores a cell.
    bool Exhausted() const { return blocks >= agg::outline::block_limit; }

private:
    agg::run_row<CRLECreate> record{0, nullptr};
    CDT* dt = nullptr;
    unsigned blocks = 0;
};
