// An object to be placed: its footprint (boxes, and runs rasterised from lines and rings), its
// candidate offsets, its identity and its placed state, with the footprint collision tests.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "index/RLEIndex.h"
#include "placement/ChangeSignal.h"
#include "placement/Geometry.h"
#include "placement/RLERaster.h"
#include "placement/Transform.h"
#include "stdafx.h"

// Private steps whose signatures name the rasterizer's or the scratch's types, kept out of the
// exported symbols as those types are. A Windows DLL exports every member of an exported class
// and cannot hide one: there they are exported, under the class's name.
#if !defined(_WIN32) && (defined(__GNUC__) || defined(__clang__))
#define KXAC_HIDDEN __attribute__((visibility("hidden")))
#else
#define KXAC_HIDDEN
#endif

namespace kxac {
// What the placement is exact for. A canvas (device rect) of up to kMaxCanvasSide cells a side
// gets exact cells everywhere. A stroke segment or ring whose bounds in subpixels reach across
// at most kMaxExactShapeWidth cells and down at most kMaxExactShapeHeight cells (a ring of whole
// cells from x to x + kMaxExactShapeWidth) is drawn at the cost of its own extent wherever it
// lies; a larger one is drawn in tiles of the raster of 32,000 x 65,000 cells, at the cost of the
// tiles it reaches. Both give exactly the cells they cover.
constexpr long long kMaxCanvasSide = 1LL << 30;
constexpr int kMaxExactShapeWidth = 32765;
constexpr int kMaxExactShapeHeight = 65533;

// The fields of an avoid object that every collision test reads. Kept in a base of their own so
// that they lie next to the object's grid, ahead of its raster: a test of a placed object then
// touches the start of the object only.
struct AvoidObjectFields {
    enum class Regularity : unsigned char { kUnknown, kRegular, kIrregular };

    std::vector<Box> m_boxes;
    std::vector<Location> m_offsets;
    size_t m_position = 0;
    // Nothing ever grows it: it keeps MaxExtent's widening toward cell (1, 1).
    Box m_declaredExtent;
    Box m_runExtent;
    // Whether the run ends of every row are non-decreasing; known until the grid changes.
    mutable Regularity m_regularity = Regularity::kUnknown;
    // A footprint that is one rectangle of cells is held as its run and its rows rather than as a
    // row record each: the grid then stores no row. No rectangle while top > bottom.
    RLE m_rectangleRun;
    int m_rectangleTop = 1;
    int m_rectangleBottom = 0;
};
}  // namespace kxac

// One object to be placed. Its footprint never moves: every test shifts it by the current offset
// at the moment of the test.
//
// Extents: the run extent is recorded from the grid by RecordMaxRLE (lines and rings record it
// after every call). MaxExtent() is the empty box united with the run extent, so a run extent
// right of and below cell (1, 1) is stretched out to that cell; boxes take part in no extent, and
// an object without runs is not valid and collides with nothing.
//
// Lines and rings need the attached transform: the canvas-bounds test reads its origin and size,
// the double forms its map extent and resolution. Without a transform they add nothing. Spans are
// clipped to the raster (columns 0 .. width - 1, rows 0 .. height - 1). A trailing odd coordinate
// value is ignored, and a null array draws nothing. A segment of length 0 draws nothing.
//
// The rasterizer is exact for cell coordinates within 16 bits and shapes narrower than 32,767
// columns. A stroke or ring whose own extent fits that range (kMaxExactShapeWidth by
// kMaxExactShapeHeight cells) gives exactly its cells wherever it lies: out of the range it is
// drawn in a frame moved by whole cells to its bounds, and its spans are moved back. A larger one
// (for instance with coordinates a million cells apart) is drawn in tiles of the raster of 32,000
// columns by 65,000 rows, each from the pieces of its edges in the tile, cut where the edges'
// own walk crosses the tile's rows and columns: its cells are exact too.
//
// Cost of one call, with n points, R the canvas height and C its width (a shape that fits the
// range stands for its own extent instead), and T = min(R, 65,000) + min(C, 32,000) for a tile:
// - AddRing: O(n) to bound the ring. In a frame, the outline walks only cells it stores (plus
//   O(1) per edge and per row an edge crosses) and stores at most 4,194,304 cells per polygon;
//   sorting and sweeping them, and merging the runs of its rows. In tiles, each tile takes every
//   edge at O(log T) (the rows where it lies beside the tile by bisection, their cover summed
//   into one cell a row and side) plus O(1) per row and column it crosses inside the tile, then
//   the same walk and sweep. Once an object's outline has stored 4,194,304 cells it stores none
//   again, and later polygons cost O(their points) per tile.
// - AddLine: O(n) for the segments that miss the canvas. A segment that meets it is skipped at
//   O(log) cost when the raster holds none of its cells, or when every row it spans is already
//   one run from column 0 to the raster's last column; such rows are found as the call draws, and
//   read from the grid, once each, when a segment lies over them. Any other segment is
//   rasterised: O(T) cells per tile it reaches, their sort, and run merges over its rows. A
//   stroke that covers the whole raster makes every later segment of the call cost O(log). A
//   segment that covers only cells already occupied, in rows that are not full, is still drawn.
// Answers are the same as drawing every polygon in full, to the cell.
class KXAC_API CAvoidObject : private kxac::AvoidObjectFields,
                              private CRLEIndexCreate,
                              private CRLERaster {
public:
    // State 0: not added since the last Reset; 1: placed; 2: not placed.
    enum : int { kNotAdded = 0, kPlaced = 1, kNotPlaced = 2 };

    CAvoidObject();
    ~CAvoidObject() override;
    CAvoidObject(const CAvoidObject&) = delete;
    CAvoidObject& operator=(const CAvoidObject&) = delete;

    // Frees the runs, empties boxes and offsets, puts (0, 0) as the only offset and makes it
    // current, empties both extents, numeric ID 0, state 0. String ID and transform stay.
    void Reset();

    // The offsets, to append to or walk. A placed object's container is told that its footprint
    // may change through the reference.
    std::vector<Location>& OffsetCollection() {
        Changed();
        return m_offsets;
    }
    // The offsets, to read: no change is signalled.
    const std::vector<Location>& Offsets() const { return m_offsets; }
    // The current position is kept as an index, so appending offsets never invalidates it. A
    // position past the end of the offsets reads as end().
    std::vector<Location>::iterator OffsetIterator();
    // Callers pass a position inside OffsetCollection() (end() included).
    void OffsetIterator(std::vector<Location>::iterator position);
    // The offset at the current position; (0, 0) when the position lies past the end (an object
    // never reset, or one whose offsets were cleared behind the position).
    Location Offset() const {
        return m_position < m_offsets.size() ? m_offsets[m_position] : Location();
    }
    // Offsets back to the single (0, 0); the current position is not moved.
    void ClearOffset();

    // Appends the box, unshifted; no extent changes.
    void AddBox(const Box& box);
    // Converts (x1, y1) to the box's (left, top) and (x2, y2) to (right, bottom) through the
    // transform, corners unsorted. Without a transform nothing is added.
    void AddBox(const Envelope& envelope);

    // xy holds count values x0, y0, x1, y1, ... in cells; width is the stroke's half-width in
    // cells. Each segment is a rectangle of thickness 2 * width with no caps or joins.
    void AddLine(int* xy, int count, int width);
    // The ring as one polygon under the even-odd rule.
    void AddRing(int* xy, int count);
    // Map units, converted to cells through the transform's scratch buffer.
    void AddLine(double* xy, int count, int width);
    void AddRing(double* xy, int count);

    // The run sink: the cells first .. last (inclusive) of row join this object's grid. Final:
    // rectangles on cell corners reach the grid without passing through it.
    void AddRLE(int row, int first, int last) final;

    long long ID() const { return m_id; }
    void ID(long long id) { m_id = id; }
    // Empty until set.
    const std::string& StringID() const;
    void StringID(const std::string& id);
    int PlacedState() const { return m_state; }
    void PlacedState(int state) { m_state = state; }

    const std::vector<Box>& Boxes() const { return m_boxes; }
    // Run extent := (StartCol, StartRow, EndCol, EndRow) of the grid; invalid for an empty grid.
    void RecordMaxRLE();
    // The run extent shifted by the current offset.
    Box RLEMaxExtent() const { return m_runExtent.Offset(Offset()); }
    // The empty box united with the run extent, shifted by the current offset.
    Box MaxExtent() const {
        Box extent = m_declaredExtent;
        extent.Union(m_runExtent);
        return extent.Offset(Offset());
    }
    bool IsValid() const { return MaxExtent().IsValid(); }

    CDT* DT() override;
    void DT(CDT* dt) override;
    void OnResizeConvas() override;

    // Footprint overlap at both current offsets. One-sided: this object's boxes are tested
    // against o's boxes and o's runs, o's boxes never against this object's runs. False when
    // either object is not valid, or o is null. Runs against runs give the answer of
    // IsIntersectRLE(o, o->RLEMaxExtent(), o->Offset()), found by merging rows.
    bool IsIntersect(CAvoidObject* o) const;
    // b in canvas cells against this object's boxes and runs.
    bool IsIntersect(Box& b) const;
    // b in canvas cells against this object's runs.
    bool IsIntersectRLE(const Box& b) const;
    // Some canvas cell is occupied both here and in g, which lies at offset go with extent e.
    bool IsIntersectRLE(CRLEIndexQuery* g, const Box& e, const Location& go) const;
    // Same as IsExistRLE2.
    bool IsExistRLE(CRLEIndexQuery* g, const Box& area, const Location& go) const;
    // Scans the canvas cells of area column by column, asking g only where this object's cell is
    // occupied. An inverted area scans nothing.
    bool IsExistRLE2(CRLEIndexQuery* g, const Box& area, const Location& go) const;
    // Box in this object's own cells. For a valid box: whether any cell of it is occupied. For
    // an inverted box: a centre-first search that probes the centre, then the four quarters
    // (sharing the centre row and column), where a quarter equal to the box it was cut from or
    // to an earlier quarter is not searched again; a quarter whose cells hold no run is skipped.
    // Boxes reaching beyond +-2^30, where the centre of a box wraps, are answered as valid boxes
    // over the cells between their bounds.
    bool IsExistRLE(const Box& b) const;

    // Read access to the object's own runs. A footprint held as one rectangle is first stored
    // row by row, for good.
    const CRLEIndexQuery& Grid() const {
        Expand();
        return *this;
    }
    // The stored rows, from the start row, as Grid() stores them; valid until the grid changes.
    const RLERowRuns* RowData() const {
        Expand();
        return RLERows::data();
    }
    // The runs of one row of the footprint, [first, second); empty for a row it does not hold.
    // Valid until the footprint changes. Never stores a rectangle's rows.
    std::pair<const RLE*, const RLE*> Runs(int row) const;
    // Whether the footprint holds a run.
    bool HasRuns() const { return HoldsRectangle() || !IsEmpty(); }
    // Whether the footprint is held as one rectangle of cells, and those cells, unshifted.
    bool HeldRectangle(Box& cells) const {
        cells = Box(m_rectangleRun.start, m_rectangleTop, m_rectangleRun.end, m_rectangleBottom);
        return HoldsRectangle();
    }
    // Whether the run ends of every row are non-decreasing; cached until the grid changes.
    bool RowsRegular() const;

    // The signal this object raises on every change of its footprint or offset, from now on
    // (null: none). An index that files the object sets it.
    void Watch(std::shared_ptr<kxac::ChangeSignal> signal) { m_watch = std::move(signal); }
    // Stops raising signal, if this object raises it.
    void Unwatch(const kxac::ChangeSignal& signal) {
        if (m_watch.get() == &signal) m_watch.reset();
    }

private:
    bool HoldsRectangle() const { return m_rectangleTop <= m_rectangleBottom; }
    // Stores a footprint held as one rectangle in the grid, row by row. The footprint does not
    // change, so neither does the object as its users see it.
    void Expand() const;
    void Changed() {
        if (m_watch) m_watch->raised = true;
    }
    // The drawing scratch of the attached transform, which must be there.
    kxac::FootprintScratch& Scratch() { return CRLERaster::DT()->footprint; }
    // Rasterises the polygon in Scratch().polygon (subpixel coordinates, not yet truncated).
    void DrawPolygon();
    // The same for a polygon out of the rasterizer's range whose vertices are given from the
    // cell (originX, originY): drawn in a frame of its own, or in tiles of the raster when it is
    // too large for one.
    void DrawFar(long long originX, long long originY);
    // Moves the polygon (whole subpixels of the canvas) into the frame whose first cell is the
    // range's first, and draws it there into the window.
    KXAC_HIDDEN void DrawInFrame(double minX, double minY, agg::emit_window window);
    // Draws the cells of the polygon (whole subpixels of the canvas) that lie in the tile, in a
    // frame of the tile, from the pieces of its edges there; into target when given.
    KXAC_HIDDEN void DrawTile(agg::emit_window tile, agg::rendering_buffer* target);
    // Adds the spans in order of rows and columns, those that meet joined.
    KXAC_HIDDEN void AddSpans(std::vector<kxac::FootprintScratch::Span>& spans);
    // Draws the vertices in Scratch().subpixels, of the frame window.dx, window.dy, keeping the
    // cells of the window.
    KXAC_HIDDEN void DrawFramed(const agg::emit_window& window, bool rectangle);
    void DrawSegment(int x0, int y0, int x1, int y1, int width);
    // Adds the cells left .. right of the rows top .. bottom, as the sweep adds those of a
    // rectangle on cell corners.
    void DrawCellRectangle(long long left, long long top, long long right, long long bottom);
    // Whether the closed rectangle of the canvas misses the bounding box.
    bool OutsideCanvas(double minX, double minY, double maxX, double maxY);
    // The columns of a full row: the raster's width.
    long long FullWidth();
    // The raster's cells, columns and rows within 32 bits, unshifted.
    KXAC_HIDDEN agg::emit_window RasterWindow();
    // Adds to Scratch().fullRows the rows of firstRow .. lastRow that are full (one run from column
    // 0 to at least FullWidth() - 1), stopping at the first that is not when untilGap is set.
    // Whether every row of the range is full.
    bool NoteFullRows(int firstRow, int lastRow, bool untilGap);
    // The runs-against-runs part of IsIntersect(o).
    bool RunsMeet(CAvoidObject* o) const;
    // Empties the grid, keeping the room of a few rows for the next footprint.
    void ReleaseRows();

    long long m_id = 0;
    // Few objects carry a string ID: it is held apart, null while empty.
    std::unique_ptr<std::string> m_stringId;
    int m_state = kNotAdded;
    std::shared_ptr<kxac::ChangeSignal> m_watch;

    // The nodes of the containers' placed and unplaced lists that hold this object, kept by the
    // containers: Recycle searches once from the back for an object that only one node holds.
    friend class CAvoidContainer;
    uint32_t m_placedNodes = 0;
    uint32_t m_unplacedNodes = 0;
};
