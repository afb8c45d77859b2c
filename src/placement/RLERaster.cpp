#include "placement/RLERaster.h"

#include <cassert>
#include <cstring>

namespace {

// The table of gamma 1.3, computed once.
const unsigned char* Gamma13() {
    struct Table {
        unsigned char values[256];
        Table() {
            agg::rasterizer r;
            r.gamma(1.3);
            std::memcpy(values, r.gamma_table(), sizeof values);
        }
    };
    static const Table table;
    return table.values;
}

}  // namespace

CRLECreate::~CRLECreate() = default;

CRLERaster::CRLERaster() : agg::rendering_buffer(nullptr, 0, 0, 0) {}

CRLERaster::~CRLERaster() = default;

unsigned char* CRLERaster::row(unsigned y) {
    record.row_index = y;
    record.row_sink = this;
    return reinterpret_cast<unsigned char*>(&record);
}

CDT* CRLERaster::DT() { return dt; }

void CRLERaster::DT(CDT* p) {
    dt = p;
    OnResizeConvas();
}

void CRLERaster::OnResizeConvas() {
    if (dt == nullptr) {
        set_size(0x7FFFFFFF, 0x7FFFFFFF);
    } else {
        set_size(static_cast<uint32_t>(dt->width), static_cast<uint32_t>(dt->height));
    }
}

agg::rasterizer& CRLERaster::Rasterizer() {
    assert(dt != nullptr);
    agg::rasterizer& r = dt->raster;
    r.gamma(Gamma13());
    r.fill_rule(1);
    r.get_outline().blocks_counted(blocks);
    return r;
}

void CRLERaster::Sweep(const agg::emit_window& window) { Sweep(*this, window); }

void CRLERaster::Sweep(agg::rendering_buffer& target, const agg::emit_window& window) {
    agg::rasterizer& r = dt->raster;
    r.render<CRLECreate>(target, window);
    blocks = r.get_outline().blocks_counted();
}
