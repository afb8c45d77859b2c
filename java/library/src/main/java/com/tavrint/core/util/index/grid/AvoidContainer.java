package com.tavrint.core.util.index.grid;

import java.io.IOException;
import java.io.InputStream;
import java.io.UncheckedIOException;
import java.lang.invoke.MethodHandles;
import java.lang.invoke.VarHandle;
import java.lang.ref.Cleaner;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.ConcurrentModificationException;
import java.util.List;
import java.util.Properties;
import java.util.concurrent.atomic.AtomicInteger;

/**
 * A placement container: decides which of a stream of map objects (labels, symbols) can be drawn
 * without overlapping the objects placed before them.
 *
 * <p>A pass: {@link #setCanvasSize set the canvas}, then for each object in order of priority
 * take one with {@link #newObject()}, describe its footprint and candidate offsets, and call
 * {@link AvoidObject#add()}; read {@link #placed()} and {@link #unplaced()}, and for each object
 * the candidate it was placed at ({@link AvoidObject#candidate()}, {@link AvoidObject#offsetX()},
 * {@link AvoidObject#offsetY()}); {@link #reset()} before the next pass. Objects are pooled and
 * reused from pass to pass.
 *
 * <p><b>Coordinates.</b> Everything is in cells of the canvas, one per pixel, x to the right and
 * y downwards; the canvas is columns 0 to width - 1 and rows 0 to height - 1. {@link
 * AvoidObject#addRect} and {@link AvoidObject#addBox} take cells, inclusive on all sides; {@link
 * AvoidObject#addRing} and {@link AvoidObject#addLine} take cell corners, cell (x, y) being the
 * unit square from corner (x, y) to corner (x + 1, y + 1): {@code addRing(2, 2, 12, 2, 12, 8, 2,
 * 8)} covers the cells of {@code addRect(2, 2, 11, 7)}. The canvas is at most {@value
 * #MAX_CANVAS_SIZE} cells a side; every coordinate, line half-width and offset lies within
 * {@code -}{@value #MAX_COORDINATE} to {@value #MAX_COORDINATE}, so that no sum of a coordinate and
 * an offset overflows.
 *
 * <p><b>Which footprints collide.</b> Only cells collide with cells: give every label and symbol
 * cells, with {@link AvoidObject#addRect}, {@link AvoidObject#addRing} or {@link
 * AvoidObject#addLine}. An object whose footprint is made of boxes alone ({@link
 * AvoidObject#addBox}) never collides with anything and is always placed. Boxes count only as an
 * addition to cells, and one-sidedly: the boxes of an object already placed block the cells of a
 * later object, but the boxes of a later object do not see the cells of one placed before it.
 *
 * <p><b>The canvas edge.</b> Cells off the canvas are dropped when a footprint is built; offsets
 * then move the cells that are left. An object whose cells reach past the edge may therefore
 * take no offset other than (0, 0): {@link AvoidObject#add()} throws for it, since at an offset
 * that moves the dropped cells back onto the canvas it would overlap what is there. Build the
 * footprint at a candidate that lies wholly on the canvas and give the others as offsets from it.
 * A footprint on the canvas may take offsets that move it partly off it: its cells are all kept.
 *
 * <p>Misuse throws instead of crashing or silently giving a wrong answer (unlike the raw natives
 * of {@link CAvoidContainerWrap}): a canvas that does not start at (0, 0), is empty or too large;
 * a footprint on an object taken before the canvas was set; an inverted rectangle or box, a ring
 * of fewer than three points, a line of fewer than two or a half-width below one; a coordinate or
 * offset out of range; any call after {@link #close()}; any use of an object after it was
 * recycled or its pass was reset.
 *
 * <p><b>Threads.</b> A container and its objects are confined to one thread at a time. A call
 * made while another thread is inside a call on the same container or one of its objects throws
 * {@link ConcurrentModificationException} and changes nothing. Handing a container to another
 * thread between calls (a thread pool running one pass after the other) is legal, with the usual
 * hand-over of the executor or a lock. Distinct containers share nothing and may run in parallel.
 *
 * <p><b>Native memory.</b> A container holds native memory (a few hundred kilobytes and more with
 * its objects) outside the Java heap. Close it, best with try-with-resources. A container that
 * becomes unreachable without {@link #close()} is freed by a {@link Cleaner} some time after the
 * garbage collector notices, which may be late: closing is still the rule.
 */
public final class AvoidContainer implements AutoCloseable {
    /** The largest canvas width and height, in cells. */
    public static final int MAX_CANVAS_SIZE = 1 << 30;

    /**
     * The largest magnitude of a coordinate, a line half-width and an offset component: their sums
     * stay inside {@code int}.
     */
    public static final int MAX_COORDINATE = (1 << 30) - 1;

    private static final Cleaner CLEANER = Cleaner.create();
    private static final AtomicInteger LIVE_NATIVE_CONTAINERS = new AtomicInteger();

    private final NativeState state;
    private final long handle;
    private final Cleaner.Cleanable cleanable;
    private boolean closed;
    private int canvasWidth;
    private int canvasHeight;
    // Counts resets: an object added in an earlier pass is no longer usable.
    private int pass;
    // The objects added in this pass, in the order they were added: the native result lists are
    // subsequences of it (recycled objects left in place, skipped when the lists are read).
    private AvoidObject[] added = new AvoidObject[64];
    private int addedCount;

    /**
     * What the cleaning action frees, and the guard of thread confinement. It holds handles only,
     * never the container, so that the container can become unreachable.
     *
     * <p>Every call enters by setting {@code user} from null to its thread and leaves by setting
     * it back: a second thread finds it set and throws before it touches anything. The same
     * compare-and-set and release publish the objects' bookkeeping to the next thread and to the
     * Cleaner's.
     */
    private static final class NativeState implements Runnable {
        private static final VarHandle USER;

        static {
            try {
                USER = MethodHandles.lookup().findVarHandle(NativeState.class, "user",
                        Thread.class);
            } catch (ReflectiveOperationException e) {
                throw new ExceptionInInitializerError(e);
            }
        }

        private final long handle;
        @SuppressWarnings("unused") // through USER
        private Thread user;
        // Objects handed out and not yet owned by the container (never added or recycled), by
        // slot; 0 marks a free slot, whose number waits in freeSlots.
        private long[] loose = new long[16];
        private int[] freeSlots = new int[16];
        private int freeCount;
        private int slotsUsed;

        NativeState(long handle) {
            this.handle = handle;
        }

        boolean tryEnter(Thread thread) {
            return USER.compareAndSet(this, null, thread);
        }

        void leave() {
            USER.setRelease(this, null);
        }

        Thread user() {
            return (Thread) USER.getOpaque(this);
        }

        int handedOut(long object) {
            int slot;
            if (freeCount > 0) {
                slot = freeSlots[--freeCount];
            } else {
                if (slotsUsed == loose.length) {
                    loose = Arrays.copyOf(loose, 2 * slotsUsed);
                    freeSlots = Arrays.copyOf(freeSlots, 2 * slotsUsed);
                }
                slot = slotsUsed++;
            }
            loose[slot] = object;
            return slot;
        }

        void ownedByContainer(int slot) {
            loose[slot] = 0;
            freeSlots[freeCount++] = slot;
        }

        // Runs exactly once: from close(), inside its call, or from the Cleaner's thread once the
        // container is unreachable, when no call can be running.
        @Override
        public void run() {
            Thread me = Thread.currentThread();
            if (user() != me && !tryEnter(me)) {
                throw new IllegalStateException("avoid container freed while in use");
            }
            for (int i = 0; i < slotsUsed; i++) {
                if (loose[i] != 0) CAvoidContainerWrap.DestroyAvoidObject(loose[i]);
            }
            CAvoidContainerWrap.DestroyAvoidContainer(handle);
            LIVE_NATIVE_CONTAINERS.decrementAndGet();
        }
    }

    /**
     * Creates an empty container. Set its canvas with {@link #setCanvasSize} before taking
     * objects.
     *
     * @throws OutOfMemoryError if the native container cannot be allocated
     */
    public AvoidContainer() {
        long h = CAvoidContainerWrap.CreateAvoidContainer();
        if (h == 0) {
            throw new OutOfMemoryError("cannot allocate a native avoid container");
        }
        LIVE_NATIVE_CONTAINERS.incrementAndGet();
        handle = h;
        state = new NativeState(h);
        cleanable = CLEANER.register(this, state);
    }

    /**
     * The version of this Java layer, as released (for example {@code 0.2.0}); the native library
     * inside the jar has the same ({@link #libraryVersion()}).
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

    /** The version of the native library loaded, loading it if needed. */
    public static String libraryVersion() {
        return AvoidNatives.libraryVersion();
    }

    /**
     * Sets the canvas: columns 0 to {@code width - 1} and rows 0 to {@code height - 1}. Objects
     * take the canvas when they are handed out, so set it before {@link #newObject()}; cells off
     * it are dropped when a footprint is built.
     *
     * @throws IllegalArgumentException if {@code width} or {@code height} is not between 1 and
     *     {@value #MAX_CANVAS_SIZE}
     */
    public void setCanvasSize(int width, int height) {
        if (width < 1 || height < 1 || width > MAX_CANVAS_SIZE || height > MAX_CANVAS_SIZE) {
            throw new IllegalArgumentException("canvas " + width + " x " + height + " is empty or"
                    + " too large: width and height must be 1 to " + MAX_CANVAS_SIZE + " cells");
        }
        enter();
        try {
            CAvoidContainerWrap.AvoidContainerExtent(handle, new int[] {0, 0, width, height}, null);
            canvasWidth = width;
            canvasHeight = height;
        } finally {
            leave();
        }
    }

    /**
     * Sets the canvas as the device rectangle (0, 0, {@code width}, {@code height}), right and
     * bottom exclusive: the same as {@link #setCanvasSize setCanvasSize(right, bottom)}. The
     * canvas always starts at (0, 0) here.
     *
     * @throws IllegalArgumentException if {@code left} or {@code top} is not 0 (another origin
     *     would move the canvas's clipping but not the cells), or as {@link #setCanvasSize}
     */
    public void setDeviceRect(int left, int top, int right, int bottom) {
        if (left != 0 || top != 0) {
            throw new IllegalArgumentException("device rect (" + left + ", " + top + ", " + right
                    + ", " + bottom + ") does not start at (0, 0): the canvas always starts"
                    + " there; shift your coordinates and call setCanvasSize(width, height)");
        }
        setCanvasSize(right, bottom);
    }

    /** Whether the canvas was set. */
    public boolean hasDeviceRect() {
        return canvasWidth > 0;
    }

    /** Width of the canvas in cells; 0 before it is set. */
    public int canvasWidth() {
        return canvasWidth;
    }

    /** Height of the canvas in cells; 0 before it is set. */
    public int canvasHeight() {
        return canvasHeight;
    }

    /**
     * Hands out an object for this pass: empty footprint, the single candidate offset (0, 0), ID 0,
     * no string ID, not yet added. It stays usable until it is recycled, until {@link #reset()}
     * after it was added, or until the container is closed.
     */
    public AvoidObject newObject() {
        enter();
        try {
            long obj = AvoidNatives.newObject(handle);
            if (obj == 0) {
                throw new OutOfMemoryError("cannot allocate a native avoid object");
            }
            return new AvoidObject(this, obj, state.handedOut(obj), canvasWidth, canvasHeight);
        } finally {
            leave();
        }
    }

    /** The objects placed in this pass, in placement order; an unmodifiable snapshot. */
    public List<AvoidObject> placed() {
        enter();
        try {
            return objects(CAvoidContainerWrap.AllPlacedObject(handle));
        } finally {
            leave();
        }
    }

    /** The objects added in this pass but not placed, in order; an unmodifiable snapshot. */
    public List<AvoidObject> unplaced() {
        enter();
        try {
            return objects(CAvoidContainerWrap.AllUnPlacedObject(handle));
        } finally {
            leave();
        }
    }

    /**
     * Ends the pass: every added object goes back into the pool and can no longer be used.
     * Objects handed out but not added stay usable.
     */
    public void reset() {
        enter();
        try {
            CAvoidContainerWrap.ResetAvoidContainer(handle);
            pass++;
            Arrays.fill(added, 0, addedCount, null);
            addedCount = 0;
        } finally {
            leave();
        }
    }

    /** Whether {@link #close()} was called. */
    public boolean isClosed() {
        return closed;
    }

    /**
     * Frees the container's native memory with all its objects, added or not; every object turns
     * unusable. Closing again does nothing.
     *
     * @throws ConcurrentModificationException if another thread is inside a call on the container
     */
    @Override
    public void close() {
        Thread me = Thread.currentThread();
        if (!state.tryEnter(me)) {
            throw busy(me);
        }
        try {
            if (closed) {
                return;
            }
            closed = true;
            Arrays.fill(added, 0, addedCount, null);
            addedCount = 0;
            cleanable.clean(); // frees once, whether the Cleaner ran or not
        } finally {
            leave();
        }
    }

    /** Native containers created and not yet freed, by close() or by the Cleaner. */
    static int liveNativeContainers() {
        return LIVE_NATIVE_CONTAINERS.get();
    }

    /**
     * Starts a call: claims the container for this thread and checks that it is open. Every
     * entry point of the container and its objects starts with it and ends with {@link #leave()}.
     */
    void enter() {
        Thread me = Thread.currentThread();
        if (!state.tryEnter(me)) {
            throw busy(me);
        }
        if (closed) {
            leave();
            throw new IllegalStateException("avoid container is closed");
        }
    }

    void leave() {
        state.leave();
    }

    private ConcurrentModificationException busy(Thread me) {
        Thread other = state.user();
        return new ConcurrentModificationException("avoid container is confined to one thread at"
                + " a time: " + me.getName() + " called it while "
                + (other == null ? "another thread" : other.getName())
                + " was inside a call on it or its objects; hand it over between calls (through"
                + " an executor or a lock), or give each thread a container of its own");
    }

    long handle() {
        return handle;
    }

    int pass() {
        return pass;
    }

    /** Adds object, not yet added, to the pass; its placed state. Called entered. */
    int add(AvoidObject object, int slot, boolean force) {
        state.ownedByContainer(slot);
        int placedState = AvoidNatives.add(handle, object.rawHandle(), force);
        if (addedCount == added.length) {
            added = Arrays.copyOf(added, 2 * addedCount);
        }
        added[addedCount++] = object;
        return placedState;
    }

    /** Gives object back to the pool. Called entered. */
    void recycle(AvoidObject object, int slot, boolean wasAdded) {
        if (!wasAdded) {
            state.ownedByContainer(slot);
        }
        CAvoidContainerWrap.RecycleAvoidObject(handle, object.rawHandle());
    }

    // The objects of a native result list: a subsequence of the objects added, in that order.
    private List<AvoidObject> objects(long[] handles) {
        if (handles == null) {
            return Collections.emptyList();
        }
        List<AvoidObject> result = new ArrayList<>(handles.length);
        int i = 0;
        for (long h : handles) {
            while (i < addedCount && (added[i].isRecycled() || added[i].rawHandle() != h)) {
                i++;
            }
            if (i == addedCount) {
                throw new IllegalStateException("container lists an object it was not given");
            }
            result.add(added[i++]);
        }
        return Collections.unmodifiableList(result);
    }
}
