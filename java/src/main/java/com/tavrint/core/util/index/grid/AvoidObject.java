package com.tavrint.core.util.index.grid;

import java.util.Objects;

/**
 * A map object asking for a place on the canvas, handed out by {@link AvoidContainer#newObject()}.
 *
 * <p>Its footprint is a set of cells built from lines and rings, plus rectangles ({@link
 * #addBox}); its candidate offsets start with (0, 0) and are tried in order. Coordinates are
 * cells, x to the right and y downwards. Footprint and offsets can be changed only before the
 * object is added; the identifiers at any time.
 *
 * <p>An object is usable until it is recycled, until its container's {@link AvoidContainer#reset()}
 * after it was added, or until its container is closed; then every method throws {@link
 * IllegalStateException}.
 */
public final class AvoidObject {
    private final AvoidContainer owner;
    private final long handle;
    private boolean added;
    private boolean retired;

    AvoidObject(AvoidContainer owner, long handle) {
        this.owner = owner;
        this.handle = handle;
    }

    /** The caller's numeric ID; 0 after the object is handed out. */
    public long id() {
        return CAvoidContainerWrap.AvoidObject_GetID(handle());
    }

    /** Sets the numeric ID. */
    public AvoidObject setId(long id) {
        CAvoidContainerWrap.AvoidObject_SetID(handle(), id);
        return this;
    }

    /** The string ID, or {@code null} when it is empty. */
    public String stringId() {
        return CAvoidContainerWrap.AvoidObject_GetStringID(handle());
    }

    /**
     * Sets the string ID; {@code null} and the empty string both clear it. The ID is stored as the
     * string's modified UTF-8 bytes, so any Java string round-trips.
     */
    public AvoidObject setStringId(String id) {
        CAvoidContainerWrap.AvoidObject_SetStringID(handle(), id);
        return this;
    }

    /** Adds a rectangle of cells, inclusive on all sides, to the footprint. */
    public AvoidObject addBox(int left, int top, int right, int bottom) {
        CAvoidContainerWrap.AvoidObject_AddBox(fillableHandle(), left, top, right, bottom);
        return this;
    }

    /**
     * Adds the cells under a polyline x0, y0, x1, y1, ... stroked {@code width} cells to each side
     * of every segment, ending flush at the points (no caps, no joins).
     *
     * @throws IllegalArgumentException if {@code coords} does not hold (x, y) pairs
     */
    public AvoidObject addLine(int[] coords, int width) {
        CAvoidContainerWrap.AvoidObject_AddLines(fillableHandle(), pairs(coords), width);
        return this;
    }

    /**
     * Adds the cells inside the closed ring x0, y0, x1, y1, ..., including cells it covers only in
     * part; parts covered twice by a self-overlapping ring stay empty.
     *
     * @throws IllegalArgumentException if {@code coords} does not hold (x, y) pairs
     */
    public AvoidObject addRing(int... coords) {
        CAvoidContainerWrap.AvoidObject_AddRing(fillableHandle(), pairs(coords));
        return this;
    }

    /** Appends a candidate offset, tried after those already held. */
    public AvoidObject addOffset(int dx, int dy) {
        CAvoidContainerWrap.AvoidObject_AddOffset(fillableHandle(), dx, dy);
        return this;
    }

    /** Leaves (0, 0) as the only candidate offset. */
    public AvoidObject clearOffsets() {
        CAvoidContainerWrap.AvoidObject_ClearOffset(fillableHandle());
        return this;
    }

    /** Clears footprint, offsets (back to (0, 0) alone) and numeric ID; keeps the string ID. */
    public AvoidObject reset() {
        CAvoidContainerWrap.AvoidObject_Reset(fillableHandle());
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
        owner.add(fillableHandle(), false);
        added = true;
        return placedState() == PlacedState.PLACED;
    }

    /**
     * Places the object at its current offset without testing for overlaps; later objects must
     * avoid it.
     */
    public void addForced() {
        owner.add(fillableHandle(), true);
        added = true;
    }

    /** Where the object stands in the current pass. */
    public PlacedState placedState() {
        return PlacedState.of(CAvoidContainerWrap.AvoidObject_PlacedState(handle()));
    }

    /**
     * The x component of the current offset: after {@link #add()} the offset at which the object
     * was placed, or the first one if it was not placed. The library reports x twice in place of
     * (x, y), so the y component is not available: to tell candidates apart after the pass, give
     * them distinct x components.
     */
    public int offsetX() {
        return CAvoidContainerWrap.AvoidObject_Offset(handle())[0];
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
