package com.tavrint.core.util.index.grid;

import java.util.Objects;

/**
 * A map object asking for a place on the canvas, handed out by {@link AvoidContainer#newObject()}.
 *
 * <p>Its footprint is a set of cells ({@link #addRect}, {@link #addRing}, {@link #addLine}), plus
 * optional boxes ({@link #addBox}); its candidate offsets start with (0, 0) and are tried in the
 * order they were added. {@link #addRect} and {@link #addBox} take cells (inclusive); {@link
 * #addRing} and {@link #addLine} take cell corners, x to the right and y downwards (see {@link
 * AvoidContainer} for the limits and for footprints at the canvas edge). Footprint and offsets can
 * be changed only before the object is added; the identifiers at any time.
 *
 * <p>Cells are what collide: an object with boxes alone never collides and is always placed, and
 * a box blocks only the cells of objects added after it, never the cells placed before it. For a
 * label's rectangle use {@link #addRect}, not {@link #addBox}.
 *
 * <p>An object is usable until it is recycled, until its container's {@link AvoidContainer#reset()}
 * after it was added, or until its container is closed; then every method throws {@link
 * IllegalStateException}. Like its container it is confined to one thread at a time.
 */
public final class AvoidObject {
    private static final int MAX = AvoidContainer.MAX_COORDINATE;

    private final AvoidContainer owner;
    private final long handle;
    private final int slot;
    // The canvas the object took when it was handed out (0 x 0: none), in cell corners.
    private final int canvasWidth;
    private final int canvasHeight;
    // Corner bounds of the cells drawn so far (empty while minX > maxX), for the canvas-edge rule.
    private long minX = Long.MAX_VALUE;
    private long minY = Long.MAX_VALUE;
    private long maxX = Long.MIN_VALUE;
    private long maxY = Long.MIN_VALUE;
    // Whether an offset other than (0, 0) was added since the offsets were last cleared.
    private boolean shifted;
    private boolean added;
    private int addedPass;
    private boolean recycled;
    private PlacedState placedState = PlacedState.NOT_ADDED;

    AvoidObject(AvoidContainer owner, long handle, int slot, int canvasWidth, int canvasHeight) {
        this.owner = owner;
        this.handle = handle;
        this.slot = slot;
        this.canvasWidth = canvasWidth;
        this.canvasHeight = canvasHeight;
    }

    /** The caller's numeric ID; 0 after the object is handed out. */
    public long id() {
        enter();
        try {
            return CAvoidContainerWrap.AvoidObject_GetID(handle);
        } finally {
            owner.leave();
        }
    }

    /** Sets the numeric ID. */
    public AvoidObject setId(long id) {
        enter();
        try {
            CAvoidContainerWrap.AvoidObject_SetID(handle, id);
        } finally {
            owner.leave();
        }
        return this;
    }

    /** The string ID, or {@code null} when it is empty. */
    public String stringId() {
        enter();
        try {
            return CAvoidContainerWrap.AvoidObject_GetStringID(handle);
        } finally {
            owner.leave();
        }
    }

    /**
     * Sets the string ID; {@code null} and the empty string both clear it. The ID is stored as the
     * string's modified UTF-8 bytes, so any Java string round-trips.
     */
    public AvoidObject setStringId(String id) {
        enter();
        try {
            CAvoidContainerWrap.AvoidObject_SetStringID(handle, id);
        } finally {
            owner.leave();
        }
        return this;
    }

    /**
     * Adds the cells {@code left..right} by {@code top..bottom}, inclusive, to the footprint, as
     * cells that collide with the cells of other objects: the footprint of a label's text
     * rectangle. It is the ring on the cells' outer corners, {@code addRing(left, top, right + 1,
     * top, right + 1, bottom + 1, left, bottom + 1)}.
     *
     * @throws IllegalArgumentException if {@code left > right} or {@code top > bottom}, or a
     *     value is out of range
     * @throws IllegalStateException if the object was taken before the canvas was set
     */
    public AvoidObject addRect(int left, int top, int right, int bottom) {
        if (left > right || top > bottom) {
            throw new IllegalArgumentException("rect (" + left + ", " + top + ", " + right + ", "
                    + bottom + ") is inverted: pass left <= right and top <= bottom");
        }
        inRange("rect", left, top, right, bottom);
        enterFootprint();
        try {
            AvoidNatives.addRect(handle, left, top, right, bottom);
            cover(left, top, right + 1L, bottom + 1L);
        } finally {
            owner.leave();
        }
        return this;
    }

    /**
     * Adds a box of cells, inclusive on all sides, to the footprint. <b>A box is not a set of
     * cells and never collides on its own:</b> an object with boxes alone is always placed. A box
     * of an object placed earlier blocks the cells of later objects, but a box of a later object
     * does not see the cells placed before it. To make a rectangle collide use {@link #addRect}.
     * Boxes are kept whole, on the canvas or off it.
     *
     * @throws IllegalArgumentException if {@code left > right} or {@code top > bottom}, or a
     *     value is out of range
     * @throws IllegalStateException if the object was taken before the canvas was set
     */
    public AvoidObject addBox(int left, int top, int right, int bottom) {
        if (left > right || top > bottom) {
            throw new IllegalArgumentException("box (" + left + ", " + top + ", " + right + ", "
                    + bottom + ") is inverted: pass left <= right and top <= bottom");
        }
        inRange("box", left, top, right, bottom);
        enterFootprint();
        try {
            CAvoidContainerWrap.AvoidObject_AddBox(handle, left, top, right, bottom);
        } finally {
            owner.leave();
        }
        return this;
    }

    /**
     * Adds the cells under a polyline through the cell corners x0, y0, x1, y1, ..., stroked
     * {@code width} cells to each side of every segment (so {@code 2 * width} cells thick), ending
     * flush at the points (no caps, no joins). A segment between two equal points draws nothing.
     *
     * @throws IllegalArgumentException if {@code coords} does not hold (x, y) pairs of at least
     *     two points, if {@code width} is below 1, or a value is out of range
     * @throws IllegalStateException if the object was taken before the canvas was set
     */
    public AvoidObject addLine(int[] coords, int width) {
        Objects.requireNonNull(coords, "coords");
        if (coords.length % 2 != 0 || coords.length < 4) {
            throw new IllegalArgumentException("a line takes the (x, y) pairs of at least two"
                    + " points, x0, y0, x1, y1, ...; got " + coords.length + " values");
        }
        if (width < 1 || width > MAX) {
            throw new IllegalArgumentException("line half-width " + width + " is not 1 to " + MAX
                    + ": pass the cells on each side of the line");
        }
        enterFootprint();
        try {
            coverPoints(coords, width, "line");
            CAvoidContainerWrap.AvoidObject_AddLines(handle, coords, width);
        } finally {
            owner.leave();
        }
        return this;
    }

    /**
     * Adds the cells inside the closed ring through the cell corners x0, y0, x1, y1, ...,
     * including cells it covers only in part; parts covered twice by a self-overlapping ring stay
     * empty.
     *
     * @throws IllegalArgumentException if {@code coords} does not hold (x, y) pairs of at least
     *     three points, or a value is out of range
     * @throws IllegalStateException if the object was taken before the canvas was set
     */
    public AvoidObject addRing(int... coords) {
        Objects.requireNonNull(coords, "coords");
        if (coords.length % 2 != 0 || coords.length < 6) {
            throw new IllegalArgumentException("a ring takes the (x, y) pairs of at least three"
                    + " points, x0, y0, x1, y1, x2, y2, ...; got " + coords.length + " values");
        }
        enterFootprint();
        try {
            coverPoints(coords, 0, "ring");
            CAvoidContainerWrap.AvoidObject_AddRing(handle, coords);
        } finally {
            owner.leave();
        }
        return this;
    }

    /**
     * Appends a candidate offset, tried after those already held. An object whose cells reach
     * past the canvas edge can take none but (0, 0) (see {@link AvoidContainer}).
     *
     * @throws IllegalArgumentException if a component is out of range
     */
    public AvoidObject addOffset(int dx, int dy) {
        if (Math.max(Math.abs((long) dx), Math.abs((long) dy)) > MAX) {
            throw new IllegalArgumentException("offset (" + dx + ", " + dy + ") is out of range:"
                    + " its components must lie within -" + MAX + " to " + MAX
                    + " (AvoidContainer.MAX_COORDINATE)");
        }
        enterFillable();
        try {
            CAvoidContainerWrap.AvoidObject_AddOffset(handle, dx, dy);
            shifted |= (dx | dy) != 0;
        } finally {
            owner.leave();
        }
        return this;
    }

    /** Leaves (0, 0) as the only candidate offset. */
    public AvoidObject clearOffsets() {
        enterFillable();
        try {
            CAvoidContainerWrap.AvoidObject_ClearOffset(handle);
            shifted = false;
        } finally {
            owner.leave();
        }
        return this;
    }

    /** Clears footprint, offsets (back to (0, 0) alone) and numeric ID; keeps the string ID. */
    public AvoidObject reset() {
        enterFillable();
        try {
            CAvoidContainerWrap.AvoidObject_Reset(handle);
            shifted = false;
            minX = minY = Long.MAX_VALUE;
            maxX = maxY = Long.MIN_VALUE;
        } finally {
            owner.leave();
        }
        return this;
    }

    /**
     * Adds the object to its container's pass: it is placed at its first candidate offset where
     * its footprint overlaps no object placed before it, or listed as not placed.
     *
     * @return whether it was placed
     * @throws IllegalStateException if the object was already added
     * @throws IllegalArgumentException if its cells reach past the canvas edge and it has an
     *     offset other than (0, 0): cells dropped at the edge would be missing where the offset
     *     brings them back
     */
    public boolean add() {
        enterFillable();
        try {
            if (shifted && offCanvas()) {
                throw new IllegalArgumentException("footprint (corners " + minX + ", " + minY
                        + " to " + maxX + ", " + maxY + ") reaches past the canvas edge (0, 0"
                        + " to " + canvasWidth + ", " + canvasHeight + "), where its cells are"
                        + " dropped, and it has offsets: build it at a candidate that lies on"
                        + " the canvas and give the others as offsets from there");
            }
            return commit(false) == PlacedState.PLACED;
        } finally {
            owner.leave();
        }
    }

    /**
     * Places the object at its current offset without testing for overlaps; later objects must
     * avoid it.
     *
     * @throws IllegalStateException if the object was already added
     */
    public void addForced() {
        enterFillable();
        try {
            commit(true);
        } finally {
            owner.leave();
        }
    }

    /** Where the object stands in the current pass. */
    public PlacedState placedState() {
        enter();
        owner.leave();
        return placedState;
    }

    /**
     * The index of the candidate offset in force, in the order the offsets were added: 0 for the
     * (0, 0) every object starts with, 1 for the first {@link #addOffset}, and so on. After
     * {@link #add()} it is the candidate the object was placed at, or 0 if it was not placed.
     */
    public int candidate() {
        enter();
        try {
            return AvoidNatives.candidate(handle);
        } finally {
            owner.leave();
        }
    }

    /** The x component of the candidate offset in force (see {@link #candidate()}). */
    public int offsetX() {
        return (int) (offset() >> 32);
    }

    /** The y component of the candidate offset in force (see {@link #candidate()}). */
    public int offsetY() {
        return (int) offset();
    }

    /**
     * Gives the object back to its container's pool; it can no longer be used. A placed object
     * stops blocking later objects of the pass.
     */
    public void recycle() {
        enter();
        try {
            owner.recycle(this, slot, added);
            recycled = true;
        } finally {
            owner.leave();
        }
    }

    long rawHandle() {
        return handle;
    }

    boolean isRecycled() {
        return recycled;
    }

    private long offset() {
        enter();
        try {
            return AvoidNatives.offset(handle);
        } finally {
            owner.leave();
        }
    }

    private PlacedState commit(boolean force) {
        int code = owner.add(this, slot, force);
        added = true;
        addedPass = owner.pass();
        placedState = PlacedState.of(code);
        return placedState;
    }

    // Enters a call on the container; throws, entered no more, if the object cannot be used.
    private void enter() {
        owner.enter();
        if (recycled || (added && addedPass != owner.pass())) {
            owner.leave();
            throw new IllegalStateException("avoid object was recycled or its pass was reset");
        }
    }

    private void enterFillable() {
        enter();
        if (added) {
            owner.leave();
            throw new IllegalStateException("avoid object was already added: its footprint and"
                    + " offsets are fixed");
        }
    }

    private void enterFootprint() {
        enterFillable();
        if (canvasWidth == 0) {
            owner.leave();
            throw new IllegalStateException("avoid object was taken before the canvas was set,"
                    + " so it would keep no cells: call setCanvasSize(...) on the container"
                    + " first, then newObject()");
        }
    }

    private boolean offCanvas() {
        return minX <= maxX && (minX < 0 || minY < 0 || maxX > canvasWidth || maxY > canvasHeight);
    }

    private void cover(long left, long top, long right, long bottom) {
        minX = Math.min(minX, left);
        minY = Math.min(minY, top);
        maxX = Math.max(maxX, right);
        maxY = Math.max(maxY, bottom);
    }

    // Checks the points' range and grows the bounds by them, widened by a line's half-width.
    // Called entered, before the native call, so that nothing is drawn when it throws.
    private void coverPoints(int[] xy, int halfWidth, String what) {
        int lowX = Integer.MAX_VALUE;
        int lowY = Integer.MAX_VALUE;
        int highX = Integer.MIN_VALUE;
        int highY = Integer.MIN_VALUE;
        for (int i = 0; i < xy.length; i += 2) {
            lowX = Math.min(lowX, xy[i]);
            highX = Math.max(highX, xy[i]);
            lowY = Math.min(lowY, xy[i + 1]);
            highY = Math.max(highY, xy[i + 1]);
        }
        inRange(what, lowX, lowY, highX, highY);
        cover((long) lowX - halfWidth, (long) lowY - halfWidth, (long) highX + halfWidth,
                (long) highY + halfWidth);
    }

    private static void inRange(String what, int a, int b, int c, int d) {
        if (Math.max(Math.max(Math.abs((long) a), Math.abs((long) b)),
                    Math.max(Math.abs((long) c), Math.abs((long) d)))
                > MAX) {
            throw new IllegalArgumentException(what + " (" + a + ", " + b + ", " + c + ", " + d
                    + ") is out of range: coordinates and offsets must lie within -" + MAX
                    + " to " + MAX + " (AvoidContainer.MAX_COORDINATE)");
        }
    }
}
