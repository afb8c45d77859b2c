package com.tavrint.core.util.index.grid;

import java.lang.ref.Reference;
import java.util.List;
import java.util.Objects;

/**
 * A map object asking for a place on the canvas, handed out by {@link AvoidContainer#newObject()}.
 *
 * <p>Its footprint is a set of cells ({@link #addRect}, {@link #addRing}, {@link #addLine}), plus
 * optional boxes ({@link #addBox}); its candidate offsets start with (0, 0) and are tried in order.
 * Coordinates are cells, x to the right and y downwards. Footprint and offsets can be changed only
 * before the object is added; the identifiers at any time.
 *
 * <p>Cells are what collide: an object with boxes alone never collides and is always placed, and
 * a box blocks only the cells of objects added after it, never the cells placed before it (see
 * {@link AvoidContainer}). For a label's rectangle use {@link #addRect}, not {@link #addBox}.
 *
 * <p>An object is usable until it is recycled, until its container's {@link AvoidContainer#reset()}
 * after it was added, or until its container is closed; then every method throws {@link
 * IllegalStateException}.
 */
public final class AvoidObject {
    private final AvoidContainer owner;
    private final long handle;
    private final boolean hasCanvas;
    private boolean added;
    private boolean retired;

    AvoidObject(AvoidContainer owner, long handle, boolean hasCanvas) {
        this.owner = owner;
        this.handle = handle;
        this.hasCanvas = hasCanvas;
    }

    /** The caller's numeric ID; 0 after the object is handed out. */
    public long id() {
        try {
            return CAvoidContainerWrap.AvoidObject_GetID(handle());
        } finally {
            Reference.reachabilityFence(owner);
        }
    }

    /** Sets the numeric ID. */
    public AvoidObject setId(long id) {
        try {
            CAvoidContainerWrap.AvoidObject_SetID(handle(), id);
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /** The string ID, or {@code null} when it is empty. */
    public String stringId() {
        try {
            return CAvoidContainerWrap.AvoidObject_GetStringID(handle());
        } finally {
            Reference.reachabilityFence(owner);
        }
    }

    /**
     * Sets the string ID; {@code null} and the empty string both clear it. The ID is stored as the
     * string's modified UTF-8 bytes, so any Java string round-trips.
     */
    public AvoidObject setStringId(String id) {
        try {
            CAvoidContainerWrap.AvoidObject_SetStringID(handle(), id);
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /**
     * Adds the cells {@code left..right} by {@code top..bottom} (inclusive) to the footprint, as
     * cells that collide with the cells of other objects. This is the footprint of a label's text
     * rectangle.
     *
     * @throws IllegalArgumentException if {@code left > right} or {@code top > bottom}
     * @throws IllegalStateException if the object was taken before the device rect was set
     */
    public AvoidObject addRect(int left, int top, int right, int bottom) {
        if (left > right || top > bottom) {
            throw new IllegalArgumentException("rect (" + left + ", " + top + ", " + right + ", "
                    + bottom + ") is inverted: pass left <= right and top <= bottom");
        }
        // Cell (x, y) is the unit square from (x, y) to (x + 1, y + 1): the ring runs along the
        // outer edges of the corner cells.
        long r = (long) right + 1;
        long b = (long) bottom + 1;
        if (r > Integer.MAX_VALUE || b > Integer.MAX_VALUE) {
            throw new IllegalArgumentException("rect reaches past the largest cell coordinate");
        }
        return ring(new int[] {left, top, (int) r, top, (int) r, (int) b, left, (int) b});
    }

    /**
     * Adds a box, inclusive on all sides, to the footprint. <b>A box is not a set of cells and
     * never collides on its own:</b> an object with boxes alone is always placed. A box of an
     * object placed earlier blocks the cells of later objects, but a box of a later object does
     * not see the cells placed before it. To make a rectangle collide use {@link #addRect}.
     *
     * @throws IllegalStateException if the object was taken before the device rect was set
     */
    public AvoidObject addBox(int left, int top, int right, int bottom) {
        try {
            CAvoidContainerWrap.AvoidObject_AddBox(footprintHandle(), left, top, right, bottom);
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /**
     * Adds the cells under a polyline x0, y0, x1, y1, ... stroked {@code width} cells to each side
     * of every segment (so {@code 2 * width} cells thick), ending flush at the points (no caps, no
     * joins).
     *
     * A segment between two equal points draws nothing.
     *
     * @throws IllegalArgumentException if {@code coords} does not hold (x, y) pairs or if {@code
     *     width} is below 1
     * @throws IllegalStateException if the object was taken before the device rect was set
     */
    public AvoidObject addLine(int[] coords, int width) {
        pairs(coords);
        if (width < 1) {
            throw new IllegalArgumentException("line width " + width
                    + " draws no cells: pass the half-width in cells, 1 or more");
        }
        try {
            CAvoidContainerWrap.AvoidObject_AddLines(footprintHandle(), coords, width);
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /**
     * Adds the cells inside the closed ring x0, y0, x1, y1, ..., including cells it covers only in
     * part; parts covered twice by a self-overlapping ring stay empty.
     *
     * @throws IllegalArgumentException if {@code coords} does not hold (x, y) pairs
     * @throws IllegalStateException if the object was taken before the device rect was set
     */
    public AvoidObject addRing(int... coords) {
        return ring(pairs(coords));
    }

    private AvoidObject ring(int[] coords) {
        try {
            CAvoidContainerWrap.AvoidObject_AddRing(footprintHandle(), coords);
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /** Appends a candidate offset, tried after those already held. */
    public AvoidObject addOffset(int dx, int dy) {
        try {
            CAvoidContainerWrap.AvoidObject_AddOffset(fillableHandle(), dx, dy);
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /** Leaves (0, 0) as the only candidate offset. */
    public AvoidObject clearOffsets() {
        try {
            CAvoidContainerWrap.AvoidObject_ClearOffset(fillableHandle());
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /** Clears footprint, offsets (back to (0, 0) alone) and numeric ID; keeps the string ID. */
    public AvoidObject reset() {
        try {
            CAvoidContainerWrap.AvoidObject_Reset(fillableHandle());
        } finally {
            Reference.reachabilityFence(owner);
        }
        return this;
    }

    /**
     * Adds the object to its container's pass: it is placed at its first candidate offset where
     * its footprint overlaps no object placed before it, or listed as not placed.
     *
     * @return whether it was placed
     * @throws IllegalStateException if the object was already added
     */
    public boolean add() {
        fillableHandle();
        owner.add(this, false);
        added = true;
        return placedState() == PlacedState.PLACED;
    }

    /**
     * Places the object at its current offset without testing for overlaps; later objects must
     * avoid it.
     */
    public void addForced() {
        fillableHandle();
        owner.add(this, true);
        added = true;
    }

    /** Where the object stands in the current pass. */
    public PlacedState placedState() {
        try {
            return PlacedState.of(CAvoidContainerWrap.AvoidObject_PlacedState(handle()));
        } finally {
            Reference.reachabilityFence(owner);
        }
    }

    /**
     * The x component of the current offset: after {@link #add()} the offset at which the object
     * was placed, or the first one if it was not placed. The library reports x twice in place of
     * (x, y), so the y component is not available: to tell candidates apart after the pass, give
     * them distinct x components.
     */
    public int offsetX() {
        try {
            return CAvoidContainerWrap.AvoidObject_Offset(handle())[0];
        } finally {
            Reference.reachabilityFence(owner);
        }
    }

    /**
     * Why the object was not placed: one entry per candidate offset, in the order they were tried
     * (the first being the footprint where it stands), holding the first object placed before
     * this one that overlaps it there, or null where none does (only when that object was
     * recycled since). Objects placed after this one are never named. An empty list when the
     * object is not among the container's {@link AvoidContainer#unplaced()} objects: not added,
     * placed, or recycled. Computed on demand by the same test as the placement; the first call
     * after the placed objects changed files them anew, in time linear in their number.
     *
     * @return an unmodifiable list
     */
    public List<AvoidObject> blockers() {
        return owner.blockers(this);
    }

    /**
     * Gives the object back to its container's pool; it can no longer be used. A placed object
     * stops blocking later objects of the pass.
     */
    public void recycle() {
        owner.recycle(this);
        retire();
    }

    boolean isAdded() {
        return added;
    }

    void retire() {
        retired = true;
    }

    long handle() {
        owner.handle(); // throws once the container is closed
        if (retired) {
            throw new IllegalStateException("avoid object was recycled or its pass was reset");
        }
        return handle;
    }

    private long footprintHandle() {
        long h = fillableHandle();
        if (!hasCanvas) {
            throw new IllegalStateException("avoid object was taken before the device rect was"
                    + " set, so it has no canvas and would keep no cells: call"
                    + " setDeviceRect(...) on the container first, then newObject()");
        }
        return h;
    }

    private long fillableHandle() {
        long h = handle();
        if (added) {
            throw new IllegalStateException("avoid object was already added");
        }
        return h;
    }

    private static int[] pairs(int[] coords) {
        Objects.requireNonNull(coords, "coords");
        if (coords.length % 2 != 0) {
            throw new IllegalArgumentException("coordinates must come in (x, y) pairs");
        }
        return coords;
    }
}
