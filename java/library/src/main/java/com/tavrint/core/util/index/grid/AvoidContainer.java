package com.tavrint.core.util.index.grid;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.lang.ref.Cleaner;
import java.lang.ref.Reference;
import java.util.ArrayList;
import java.util.Collections;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Properties;
import java.util.Set;
import java.util.concurrent.atomic.AtomicInteger;

/**
 * A placement container: decides which of a stream of map objects (labels, symbols) can be drawn
 * without overlapping the objects placed before them.
 *
 * <p>A pass: {@link #setDeviceRect set the device rectangle} (and, for map coordinates, the map
 * extent), then for each object in order of priority take one with {@link #newObject()}, describe
 * its footprint and candidate offsets, and call {@link AvoidObject#add()}; read {@link #placed()}
 * and {@link #unplaced()}; {@link #reset()} before the next pass. Objects are pooled and reused
 * from pass to pass.
 *
 * <p><b>Which footprints collide.</b> Only cells collide with cells: give every label and symbol
 * cells, with {@link AvoidObject#addRect}, {@link AvoidObject#addRing} or {@link
 * AvoidObject#addLine}. An object whose footprint is made of boxes alone ({@link
 * AvoidObject#addBox}) never collides with anything and is always placed. Boxes count only as an
 * addition to cells, and one-sidedly: the boxes of an object already placed block the cells of a
 * later object, but the boxes of a later object do not see the cells of one placed before it.
 *
 * <p>Unlike the raw natives of {@link CAvoidContainerWrap}, misuse throws instead of crashing or
 * silently placing everything: a footprint on an object taken before {@link #setDeviceRect} was
 * called, an empty or inverted device rectangle, a map extent that is empty or not finite, a line
 * width below one cell, any call after {@link #close()}, and any use of an object after it was
 * recycled or its pass was reset.
 *
 * <p><b>Native memory.</b> A container holds native memory (a few hundred kilobytes and more with
 * its objects) outside the Java heap. Close it, best with try-with-resources. A container that
 * becomes unreachable without {@link #close()} is freed by a {@link Cleaner} some time after the
 * garbage collector notices, which may be late: closing is still the rule.
 *
 * <p>A container and its objects are not thread-safe: use them from one thread at a time.
 * Distinct containers share nothing and may run in parallel.
 */
public final class AvoidContainer implements AutoCloseable {
    private static final Cleaner CLEANER = Cleaner.create();
    private static final AtomicInteger LIVE_NATIVE_CONTAINERS = new AtomicInteger();

    private final NativeState state;
    private final Cleaner.Cleanable cleanable;
    private boolean closed;
    private boolean deviceRectSet;
    // Objects handed out in this pass and not recycled, by handle: the pool reuses handles.
    private final Map<Long, AvoidObject> live = new HashMap<>();

    /**
     * What the cleaning action frees: the native container and the objects handed out but never
     * added (which the container does not own). It holds handles only, never the container, so
     * that the container can become unreachable.
     */
    private static final class NativeState implements Runnable {
        private final long handle;
        private final Set<Long> loose = new HashSet<>();

        NativeState(long handle) {
            this.handle = handle;
        }

        // Runs exactly once: from close(), or from the Cleaner's thread once the container is
        // unreachable. Synchronized so that the Cleaner's thread sees the owner's last updates.
        @Override
        public synchronized void run() {
            for (long object : loose) {
                CAvoidContainerWrap.DestroyAvoidObject(object);
            }
            loose.clear();
            CAvoidContainerWrap.DestroyAvoidContainer(handle);
            LIVE_NATIVE_CONTAINERS.decrementAndGet();
        }

        synchronized void handedOut(long object) {
            loose.add(object);
        }

        synchronized void ownedByContainer(long object) {
            loose.remove(object);
        }
    }

    /**
     * Creates an empty container. Set its device rectangle with {@link #setDeviceRect} before
     * taking objects.
     *
     * @throws OutOfMemoryError if the native container cannot be allocated
     */
    public AvoidContainer() {
        long handle = CAvoidContainerWrap.CreateAvoidContainer();
        if (handle == 0) {
            throw new OutOfMemoryError("cannot allocate a native avoid container");
        }
        LIVE_NATIVE_CONTAINERS.incrementAndGet();
        state = new NativeState(handle);
        cleanable = CLEANER.register(this, state);
    }

    /**
     * The version of this library, as released (for example {@code 0.2.0}).
     *
     * @throws IllegalStateException if the jar lost its version resource
     */
    public static String version() {
        try (InputStream in = AvoidContainer.class.getResourceAsStream("version.properties")) {
            if (in == null) {
                throw new IllegalStateException("version.properties missing from the jar");
            }
            Properties p = new Properties();
            p.load(in);
            return p.getProperty("version");
        } catch (IOException e) {
            throw new UncheckedIOException(e);
        }
    }

    /**
     * Sets the canvas in cells (one per pixel), {@code right} and {@code bottom} exclusive; a map
     * extent held is refitted to its size. Footprint cells outside columns 0 to {@code right -
     * left - 1} and rows 0 to {@code bottom - top - 1} are dropped. Objects take the canvas size
     * when they are handed out, so set it before {@link #newObject()}.
     *
     * @throws IllegalArgumentException if the rectangle is empty or inverted ({@code right <=
     *     left} or {@code bottom <= top})
     */
    public void setDeviceRect(int left, int top, int right, int bottom) {
        if (right <= left || bottom <= top) {
            throw new IllegalArgumentException("device rect (" + left + ", " + top + ", " + right
                    + ", " + bottom + ") is empty or inverted: pass left < right and top < bottom,"
                    + " e.g. setDeviceRect(0, 0, width, height)");
        }
        try {
            CAvoidContainerWrap.AvoidContainerExtent(
                    handle(), new int[] {left, top, right, bottom}, null);
            deviceRectSet = true;
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    /**
     * Sets the map extent shown on the canvas (map units, y upwards), widened about its centre to
     * the canvas's proportions.
     *
     * @throws IllegalStateException if the device rectangle is not set yet
     * @throws IllegalArgumentException if a value is NaN or infinite, or {@code x1 >= x2} or {@code
     *     y1 >= y2}
     */
    public void setMapExtent(double x1, double y1, double x2, double y2) {
        if (!deviceRectSet) {
            throw new IllegalStateException(
                    "set the device rect with setDeviceRect(...) before the map extent");
        }
        double[] e = {x1, y1, x2, y2};
        for (double v : e) {
            if (!Double.isFinite(v)) {
                throw new IllegalArgumentException("map extent (" + x1 + ", " + y1 + ", " + x2
                        + ", " + y2 + ") has a value that is not finite: pass real numbers");
            }
        }
        if (!(x1 < x2) || !(y1 < y2)) {
            throw new IllegalArgumentException("map extent (" + x1 + ", " + y1 + ", " + x2 + ", "
                    + y2 + ") is empty or inverted: pass x1 < x2 and y1 < y2 (west, south, east,"
                    + " north)");
        }
        try {
            CAvoidContainerWrap.AvoidContainerExtent(handle(), null, e);
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    /** Whether {@link #setDeviceRect} was called. */
    public boolean hasDeviceRect() {
        return deviceRectSet;
    }

    /**
     * Hands out an object for this pass: empty footprint, the single candidate offset (0, 0), ID 0,
     * no string ID, not yet added. It stays usable until it is recycled, until {@link #reset()}
     * after it was added, or until the container is closed.
     */
    public AvoidObject newObject() {
        try {
            long obj = CAvoidContainerWrap.CreateAvoidObject(handle());
            if (obj == 0) {
                throw new OutOfMemoryError("cannot allocate a native avoid object");
            }
            state.handedOut(obj);
            // A pooled object keeps the string ID of its previous use.
            CAvoidContainerWrap.AvoidObject_SetStringID(obj, null);
            AvoidObject object = new AvoidObject(this, obj, deviceRectSet);
            live.put(obj, object);
            return object;
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    /** The objects placed in this pass, in placement order; an unmodifiable snapshot. */
    public List<AvoidObject> placed() {
        try {
            return objects(CAvoidContainerWrap.AllPlacedObject(handle()));
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    /** The objects added in this pass but not placed, in order; an unmodifiable snapshot. */
    public List<AvoidObject> unplaced() {
        try {
            return objects(CAvoidContainerWrap.AllUnPlacedObject(handle()));
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    /**
     * Ends the pass: every added object goes back into the pool and can no longer be used.
     * Objects handed out but not added stay usable.
     */
    public void reset() {
        try {
            CAvoidContainerWrap.ResetAvoidContainer(handle());
        } finally {
            Reference.reachabilityFence(this);
        }
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
        return closed;
    }

    /**
     * Frees the container's native memory with all its objects, added or not; every object turns
     * unusable. Closing again does nothing.
     */
    @Override
    public void close() {
        if (closed) {
            return;
        }
        closed = true;
        for (AvoidObject o : live.values()) {
            o.retire();
        }
        live.clear();
        cleanable.clean(); // frees once, whether the Cleaner ran or not
    }

    /** Native containers created and not yet freed, by close() or by the Cleaner. */
    static int liveNativeContainers() {
        return LIVE_NATIVE_CONTAINERS.get();
    }

    long handle() {
        if (closed) {
            throw new IllegalStateException("avoid container is closed");
        }
        return state.handle;
    }

    void add(AvoidObject object, boolean force) {
        try {
            long h = handle();
            state.ownedByContainer(object.handle());
            if (force) {
                CAvoidContainerWrap.AddAvoidObjectForce(h, object.handle());
            } else {
                CAvoidContainerWrap.AddAvoidObject(h, object.handle());
            }
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    void recycle(AvoidObject object) {
        try {
            state.ownedByContainer(object.handle());
            CAvoidContainerWrap.RecycleAvoidObject(handle(), object.handle());
            live.remove(object.handle());
        } finally {
            Reference.reachabilityFence(this);
        }
    }

    List<AvoidObject> blockers(AvoidObject object) {
        try {
            long[] handles = AvoidNatives.blockers(handle(), object.handle());
            if (handles == null) return Collections.emptyList();
            List<AvoidObject> result = new ArrayList<>(handles.length);
            for (long h : handles) {
                AvoidObject o = h == 0 ? null : live.get(h);
                if (h != 0 && o == null) {
                    throw new IllegalStateException("container names an object it never handed out");
                }
                result.add(o);
            }
            return Collections.unmodifiableList(result);
        } finally {
            Reference.reachabilityFence(this);
        }
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
