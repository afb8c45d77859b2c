package com.tavrint.core.util.index.grid;

/**
 * The natives of {@code libKXAvoidContainer} on raw handles: one static method per operation of a
 * placement container or of an avoid object.
 *
 * <p>A handle is the address of a native object; {@code 0} is the null handle. Every method given
 * a null handle does nothing and returns {@code false}, {@code 0} or {@code null}. Nothing else is
 * checked: a handle that was destroyed, or that belongs to another kind of object, crashes the
 * virtual machine. A {@code null} array or string passed with a valid handle is treated as absent.
 * Calls on one container and its objects must come from one thread at a time; different containers
 * may be used in parallel.
 *
 * <p>{@link AvoidContainer} and {@link AvoidObject} offer the same operations without raw handles,
 * turning misuse into exceptions.
 *
 * <p>The native library is loaded on first use of this class (see {@link #LIBRARY_PATH_PROPERTY}).
 */
public final class CAvoidContainerWrap {
    /**
     * System property naming the path of the native library to load instead of the one inside the
     * jar. Without it the library is extracted from the jar (linux x86-64) or, failing that, loaded
     * with {@code System.loadLibrary("KXAvoidContainer")}.
     */
    public static final String LIBRARY_PATH_PROPERTY = NativeLibrary.PATH_PROPERTY;

    static {
        NativeLibrary.load();
    }

    private CAvoidContainerWrap() {}

    /** Creates a placement container; returns its handle. */
    public static native long CreateAvoidContainer();

    /**
     * Destroys a container with every object it holds (pooled, placed or not placed); objects
     * handed out and never added or recycled stay alive. Returns {@code false} for the null handle.
     */
    public static native boolean DestroyAvoidContainer(long c);

    /**
     * Fits the container's transform. If {@code rect} has at least four elements they set the
     * device rectangle (left, top, right, bottom) and the map extent held is refitted to it; then,
     * if {@code extent} has at least four elements, they set the map extent (x1, y1, x2, y2),
     * widened about its centre to the rectangle's proportions. Shorter or null arrays are skipped.
     * Nothing is checked: an empty or inverted rectangle, or an extent with NaN or infinite values,
     * is stored as given ({@link AvoidContainer} refuses them).
     */
    public static native void AvoidContainerExtent(long c, int[] rect, double[] extent);

    /** Ends a pass: every placed and not placed object goes back into the container's pool. */
    public static native void ResetAvoidContainer(long c);

    /**
     * Hands out an object, reused from the pool (oldest first) or new, reset, with the single
     * candidate offset (0, 0). Returns {@code 0} for the null handle.
     */
    public static native long CreateAvoidObject(long c);

    /** Deletes an object that was never added and never recycled; any other use is fatal. */
    public static native void DestroyAvoidObject(long obj);

    /**
     * Gives an object back to the container's pool: one never added, or one found in the list its
     * state names; otherwise nothing happens.
     */
    public static native void RecycleAvoidObject(long c, long obj);

    /**
     * Places the object at its first candidate offset where it overlaps no placed object, or
     * lists it as not placed. Returns {@code true} either way and {@code false} only for a null
     * handle; the outcome is the object's placed state.
     */
    public static native boolean AddAvoidObject(long c, long obj);

    /** Places the object without any test. Returns {@code false} only for a null handle. */
    public static native boolean AddAvoidObjectForce(long c, long obj);

    /** Handles of the placed objects in placement order, or {@code null} when there are none. */
    public static native long[] AllPlacedObject(long c);

    /** Handles of the objects that were not placed, in order, or {@code null} when none. */
    public static native long[] AllUnPlacedObject(long c);

    /**
     * Resets an object: no footprint, offsets (0, 0) only, ID 0, state 0; the string ID is kept.
     */
    public static native void AvoidObject_Reset(long obj);

    /** 0 not added since the last reset, 1 placed, 2 not placed; 0 for the null handle. */
    public static native int AvoidObject_PlacedState(long obj);

    /** Sets the object's numeric ID. */
    public static native void AvoidObject_SetID(long obj, long id);

    /** The object's numeric ID; 0 for the null handle. */
    public static native long AvoidObject_GetID(long obj);

    /** Sets the object's string ID; {@code null} stores the empty string. */
    public static native void AvoidObject_SetStringID(long obj, String id);

    /** The object's string ID, or {@code null} when it is empty. */
    public static native String AvoidObject_GetStringID(long obj);

    /**
     * The object's current offset as {x, x}: the x component twice, the y component is not
     * reported. {@code null} for the null handle.
     */
    public static native int[] AvoidObject_Offset(long obj);

    /** Leaves (0, 0) as the object's only candidate offset. */
    public static native void AvoidObject_ClearOffset(long obj);

    /**
     * Adds a box, inclusive on all sides, to the object's footprint. A box is not a set of cells:
     * an object whose footprint has boxes but no cells never collides and is always placed. The
     * box test is one-sided: the boxes of an object already placed are tested against the boxes
     * and cells of a later object, but the boxes of the later object are not tested against the
     * cells placed before it. For a rectangle that collides, add it as a ring ({@link
     * #AvoidObject_AddRing}) or use {@link AvoidObject#addRect}.
     */
    public static native void AvoidObject_AddBox(
            long obj, int left, int top, int right, int bottom);

    /**
     * Adds the cells under a polyline (x0, y0, x1, y1, ...) stroked {@code width} cells to each
     * side, without caps or joins. An odd last element is ignored; {@code null} adds nothing.
     */
    public static native void AvoidObject_AddLines(long obj, int[] coords, int width);

    /**
     * Adds the cells inside a closed ring (x0, y0, x1, y1, ...), even-odd rule. An odd last
     * element is ignored; {@code null} adds nothing.
     */
    public static native void AvoidObject_AddRing(long obj, int[] coords);

    /** Appends a candidate offset, tried after those already held. */
    public static native void AvoidObject_AddOffset(long obj, int x, int y);
}
