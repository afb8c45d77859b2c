package com.tavrint.demo;

import com.tavrint.core.util.index.grid.CAvoidContainerWrap;
import com.tavrint.demo.Scene.Label;
import java.util.Arrays;
import java.util.List;

/**
 * One placement pass of a scene through the native library.
 *
 * <p>Order of the pass: every city dot first, forced (a small octagon ring each, so that no label
 * covers a city); then the border pieces and, when asked, the coast pieces, forced as stroked
 * lines, and the reserved boxes as rings; then one object per label in order of population, its footprint the ring around its first
 * candidate box and its further candidates as offsets. Dots are objects of their own because an
 * offset moves an object's whole footprint, and every footprint has runs, since an object without
 * runs never collides.
 *
 * <p>The library reports only the x component of the offset at which a label was placed; the
 * candidates of one label have distinct x offsets (see {@link Candidates}), which identifies the
 * candidate.
 */
public final class LabelPass {
    /** Outcome of a label with no candidate inside the canvas: it is not offered at all. */
    public static final int NOT_OFFERED = -2;
    /** Outcome of a label the library rejected. */
    public static final int REJECTED = -1;

    /** Kinds of objects, kept in the high half of each object's numeric ID. */
    enum Kind { DOT, BORDER, COAST, RESERVED, LABEL }

    /**
     * The result: per label the index of its chosen candidate, or REJECTED or NOT_OFFERED; object
     * counts; and the nanoseconds spent building footprints, placing and reading the results.
     */
    public record Result(int[] chosen, int[] objectsByKind, int placedLabels, int rejectedLabels,
            long footprintNanos, long placeNanos, long readNanos) {}

    private final Scene scene;
    private final boolean coastAsObstacle;
    private final int[] objectsByKind = new int[Kind.values().length];
    private long footprintNanos;
    private long placeNanos;

    public LabelPass(Scene scene, boolean coastAsObstacle) {
        this.scene = scene;
        this.coastAsObstacle = coastAsObstacle;
    }

    public Result run() {
        long c = CAvoidContainerWrap.CreateAvoidContainer();
        try {
            Projection p = scene.projection();
            CAvoidContainerWrap.AvoidContainerExtent(
                    c, new int[] {0, 0, p.width(), p.height()}, p.projectedExtent());
            List<Label> labels = scene.labels();
            for (int i = 0; i < labels.size(); i++) {
                Label l = labels.get(i);
                int[] ring = Footprints.octagonRing(l.px(), l.py(), l.style().dotRadius() + 1);
                addForced(c, Kind.DOT, i, ring, -1);
            }
            addPieces(c, Kind.BORDER, scene.borderPieces());
            if (coastAsObstacle) addPieces(c, Kind.COAST, scene.coastPieces());
            List<int[]> reserved = scene.reservedBoxes();
            for (int i = 0; i < reserved.size(); i++) {
                int[] b = reserved.get(i);
                addForced(c, Kind.RESERVED, i, Footprints.rectangleRing(b[0], b[1], b[2], b[3]), -1);
            }
            for (int i = 0; i < labels.size(); i++) {
                Candidates cand = labels.get(i).candidates();
                if (!cand.isEmpty()) addLabel(c, i, cand);
            }
            return readResults(c);
        } finally {
            CAvoidContainerWrap.DestroyAvoidContainer(c);
        }
    }

    private void addPieces(long c, Kind kind, List<int[]> pieces) {
        for (int i = 0; i < pieces.size(); i++) {
            addForced(c, kind, i, pieces.get(i), Scene.LINE_HALF_WIDTH);
        }
    }

    // A ring when halfWidth < 0, else a line of that half-width.
    private void addForced(long c, Kind kind, int index, int[] xy, int halfWidth) {
        long t0 = System.nanoTime();
        long obj = CAvoidContainerWrap.CreateAvoidObject(c);
        CAvoidContainerWrap.AvoidObject_SetID(obj, id(kind, index));
        if (halfWidth < 0) {
            CAvoidContainerWrap.AvoidObject_AddRing(obj, xy);
        } else {
            CAvoidContainerWrap.AvoidObject_AddLines(obj, xy, halfWidth);
        }
        long t1 = System.nanoTime();
        CAvoidContainerWrap.AddAvoidObjectForce(c, obj);
        long t2 = System.nanoTime();
        footprintNanos += t1 - t0;
        placeNanos += t2 - t1;
        objectsByKind[kind.ordinal()]++;
    }

    private void addLabel(long c, int index, Candidates cand) {
        long t0 = System.nanoTime();
        long obj = CAvoidContainerWrap.CreateAvoidObject(c);
        CAvoidContainerWrap.AvoidObject_SetID(obj, id(Kind.LABEL, index));
        int l = cand.left(0);
        int t = cand.top(0);
        CAvoidContainerWrap.AvoidObject_AddRing(obj,
                Footprints.rectangleRing(l, t, l + cand.width() - 1, t + cand.height() - 1));
        for (int k = 1; k < cand.size(); k++) {
            CAvoidContainerWrap.AvoidObject_AddOffset(obj, cand.dx(k), cand.dy(k));
        }
        long t1 = System.nanoTime();
        CAvoidContainerWrap.AddAvoidObject(c, obj);
        long t2 = System.nanoTime();
        footprintNanos += t1 - t0;
        placeNanos += t2 - t1;
        objectsByKind[Kind.LABEL.ordinal()]++;
    }

    private Result readResults(long c) {
        long t0 = System.nanoTime();
        List<Label> labels = scene.labels();
        int[] chosen = new int[labels.size()];
        Arrays.fill(chosen, NOT_OFFERED);
        int placed = 0;
        for (long obj : orEmpty(CAvoidContainerWrap.AllPlacedObject(c))) {
            long id = CAvoidContainerWrap.AvoidObject_GetID(obj);
            if (kindOf(id) != Kind.LABEL) continue;
            int i = indexOf(id);
            int dx = CAvoidContainerWrap.AvoidObject_Offset(obj)[0];
            int k = labels.get(i).candidates().indexOfDx(dx);
            if (k < 0) {
                throw new IllegalStateException("label " + i + " placed at an x offset " + dx
                        + " that none of its candidates has");
            }
            chosen[i] = k;
            placed++;
        }
        int rejected = 0;
        for (long obj : orEmpty(CAvoidContainerWrap.AllUnPlacedObject(c))) {
            long id = CAvoidContainerWrap.AvoidObject_GetID(obj);
            if (kindOf(id) != Kind.LABEL) continue;
            chosen[indexOf(id)] = REJECTED;
            rejected++;
        }
        long readNanos = System.nanoTime() - t0;
        return new Result(chosen, objectsByKind.clone(), placed, rejected, footprintNanos,
                placeNanos, readNanos);
    }

    static long id(Kind kind, int index) {
        return ((long) kind.ordinal() << 32) | index;
    }

    static Kind kindOf(long id) {
        int k = (int) (id >>> 32);
        return k >= 0 && k < Kind.values().length ? Kind.values()[k] : null;
    }

    static int indexOf(long id) {
        return (int) id;
    }

    // The library returns null, not an empty array, for an empty list.
    private static long[] orEmpty(long[] handles) {
        return handles == null ? new long[0] : handles;
    }
}
