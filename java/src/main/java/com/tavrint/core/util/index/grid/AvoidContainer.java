package com.tavrint.core.util.index.grid;

import java.util.ArrayList;
import java.util.Collections;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.concurrent.atomic.AtomicBoolean;

/**
 * A placement container: decides which of a stream of map objects (labels, symbols) can be drawn
 * without overlapping the objects placed before them.
 *
 * <p>A pass: set the device rectangle (and the map extent), then for each object in order of
 * priority take one with {@link #newObject()}, describe its footprint and candidate offsets, and
 * call {@link AvoidObject#add()}; read {@link #placed()} and {@link #unplaced()}; {@link #reset()}
 * before the next pass. Objects are pooled and reused from pass to pass.
 *
 * <p>Unlike the raw natives of {@link CAvoidContainerWrap}, misuse throws instead of crashing:
 * any call after {@link #close()}, and any use of an object after it was recycled or its pass was
 * reset, throws {@link IllegalStateException}. A container and its objects are not thread-safe:
 * use them from one thread at a time. Distinct containers share nothing and may run in parallel.
 */
public final class AvoidContainer implements AutoCloseable {
    private final long handle;
    private final AtomicBoolean closed = new AtomicBoolean();
    // Objects handed out in this pass and not recycled, by handle: the pool reuses handles.
    private final Map<Long, AvoidObject> live = new HashMap<>();

    /**
     * Creates an empty container. Its device rectangle and map extent are zero until set.
     *
     * @throws OutOfMemoryError if the native container cannot be allocated
     */
    public AvoidContainer() {
        handle = CAvoidContainerWrap.CreateAvoidContainer();
        if (handle == 0) {
            throw new OutOfMemoryError("cannot allocate a native avoid container");
        }
    }

    /**
     * Sets the canvas in cells (one per pixel); the map extent held is refitted to its size.
     * Objects take the canvas size when they are handed out, so set it before {@link #newObject()}.
     * Footprint cells outside columns 0 to {@code right - left - 1} and rows 0 to {@code bottom -
     * top - 1} are dropped.
     */
    public void setDeviceRect(int left, int top, int right, int bottom) {
        CAvoidContainerWrap.AvoidContainerExtent(
                handle(), new int[] {left, top, right, bottom}, null);
    }

    /**
     * Sets the map extent shown on the canvas, widened about its centre to the canvas's
     * proportions. Set the device rectangle first.
     */
    public void setMapExtent(double x1, double y1, double x2, double y2) {
        CAvoidContainerWrap.AvoidContainerExtent(handle(), null, new double[] {x1, y1, x2, y2});
    }

    /**
     * Hands out an object for this pass: empty footprint, the single candidate offset (0, 0), ID 0,
     * no string ID, not yet added. It stays usable until it is recycled, until {@link #reset()}
     * after it was added, or until the container is closed.
     */
    public AvoidObject newObject() {
        long obj = CAvoidContainerWrap.CreateAvoidObject(handle());
        if (obj == 0) {
            throw new OutOfMemoryError("cannot allocate a native avoid object");
        }
        // A pooled object keeps the string ID of its previous use.
        CAvoidContainerWrap.AvoidObject_SetStringID(obj, null);
        AvoidObject object = new AvoidObject(this, obj);
        live.put(obj, object);
        return object;
    }

    /** The objects placed in this pass, in placement order; an unmodifiable snapshot. */
    public List<AvoidObject> placed() {
        return objects(CAvoidContainerWrap.AllPlacedObject(handle()));
    }

    /** The objects added in this pass but not placed, in order; an unmodifiable snapshot. */
    public List<AvoidObject> unplaced() {
        return objects(CAvoidContainerWrap.AllUnPlacedObject(handle()));
    }

    /**
     * Ends the pass: every added object goes back into the pool and can no longer be used.
     * Objects handed out but not added stay usable.
     */
    public void reset() {
        CAvoidContainerWrap.ResetAvoidContainer(handle());
        live.values().removeIf(o -> {
            if (o.isAdded()) {
                o.retire();
                return true;
            }
            return false;
        });
    }

    /** Whether {@link #close()} was called. */
    public boolean isClosed() {
        return closed.get();
    }

    /**
     * Frees the container with all its objects, added or not. Closing again does nothing.
     */
    @Override
    public void close() {
        if (!closed.compareAndSet(false, true)) {
            return;
        }
        for (Map.Entry<Long, AvoidObject> entry : live.entrySet()) {
            if (!entry.getValue().isAdded()) {
                // Handed out and never added: the native container does not own it.
                CAvoidContainerWrap.DestroyAvoidObject(entry.getKey());
            }
            entry.getValue().retire();
        }
        live.clear();
        CAvoidContainerWrap.DestroyAvoidContainer(handle);
    }

    long handle() {
        if (closed.get()) {
            throw new IllegalStateException("avoid container is closed");
        }
        return handle;
    }

    void add(long object, boolean force) {
        if (force) {
            CAvoidContainerWrap.AddAvoidObjectForce(handle(), object);
        } else {
            CAvoidContainerWrap.AddAvoidObject(handle(), object);
        }
    }

    void recycle(AvoidObject object) {
        CAvoidContainerWrap.RecycleAvoidObject(handle(), object.handle());
        live.remove(object.handle());
    }

    private List<AvoidObject> objects(long[] handles) {
        if (handles == null) {
            return Collections.emptyList();
        }
        List<AvoidObject> result = new ArrayList<>(handles.length);
        for (long h : handles) {
            AvoidObject o = live.get(h);
            if (o == null) {
                throw new IllegalStateException("container lists an object it never handed out");
            }
            result.add(o);
        }
        return Collections.unmodifiableList(result);
    }
}
