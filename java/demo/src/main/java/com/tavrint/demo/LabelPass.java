package com.tavrint.demo;

import com.tavrint.core.util.index.grid.AvoidContainer;
import com.tavrint.core.util.index.grid.AvoidObject;
import com.tavrint.core.util.index.grid.PlacedState;
import com.tavrint.demo.Scene.Label;
import java.util.Arrays;
import java.util.List;

/**
 * One placement pass of a scene through the library, ordered as a cartographer orders a map.
 *
 * <p>First the obstacles: the border pieces and, when asked, the coast pieces, forced as stroked
 * lines, and the reserved boxes (the legend's panel), forced as rectangles of cells. Then the
 * cities in order of population, each with its dot and its label together: the dot (an octagon
 * ring) is added, not forced, and then the label (the rectangle of its first candidate, its
 * further candidates as offsets). A city whose dot finds no place, or whose label finds none, is
 * dropped: its dot is recycled, so that it blocks no smaller city. So nothing of a smaller city
 * can block a larger one.
 *
 * <p>Lines are soft obstacles. The pass runs two containers side by side: a strict one with every
 * obstacle and a loose one without the lines; whatever is kept goes into both. A dot that only a
 * line refuses (it sits on a border) is kept; a label of a city of at least {@link
 * #CROSSES_LINES_FROM} inhabitants that finds no place clear of the lines may cross one, so that
 * no large city loses its name to a border drawn through its suburbs.
 *
 * <p>The candidate a label was placed at is the object's {@link AvoidObject#candidate()}: its
 * offsets are added in the order of its {@link Candidates}.
 */
public final class LabelPass {
    /** Outcome of a label with no candidate inside the canvas: the city is left out. */
    public static final int NOT_OFFERED = -2;
    /** Outcome of a label the library rejected: the city is left out. */
    public static final int REJECTED = -1;
    /** Outcome of a city whose dot found no place: nothing of it is offered. */
    public static final int DOT_BLOCKED = -3;
    /** Cities from this population on may have their label cross a line when nothing else fits. */
    public static final long CROSSES_LINES_FROM = 250_000;

    /** Kinds of objects, counted in the result. */
    enum Kind { DOT, BORDER, COAST, RESERVED, LABEL }

    /**
     * The result: per label the index of its chosen candidate, or REJECTED, NOT_OFFERED or
     * DOT_BLOCKED; object counts (of the strict container); the dots kept on a line and the labels
     * that cross one; and the nanoseconds spent building footprints, placing and reading the
     * results.
     */
    public record Result(int[] chosen, int[] objectsByKind, int placedLabels, int rejectedLabels,
            int dotsOnLines, int labelsAcrossLines, long footprintNanos, long placeNanos,
            long readNanos) {
        /** Short name of an outcome, for lists. */
        public static String outcome(int chosen) {
            return switch (chosen) {
                case REJECTED -> "no_room";
                case NOT_OFFERED -> "off_canvas";
                case DOT_BLOCKED -> "dot_blocked";
                default -> "placed";
            };
        }
    }

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
        try (AvoidContainer strict = new AvoidContainer();
                AvoidContainer loose = new AvoidContainer()) {
            Projection p = scene.projection();
            strict.setDeviceRect(0, 0, p.width(), p.height());
            loose.setDeviceRect(0, 0, p.width(), p.height());
            addPieces(strict, Kind.BORDER, scene.borderPieces());
            if (coastAsObstacle) addPieces(strict, Kind.COAST, scene.coastPieces());
            for (int[] b : scene.reservedBoxes()) {
                long t0 = System.nanoTime();
                AvoidObject box = strict.newObject().addRect(b[0], b[1], b[2], b[3]);
                long t1 = System.nanoTime();
                box.addForced();
                count(Kind.RESERVED, t0, t1);
                loose.newObject().addRect(b[0], b[1], b[2], b[3]).addForced();
            }

            List<Label> labels = scene.labels();
            int[] chosen = new int[labels.size()];
            Arrays.fill(chosen, NOT_OFFERED);
            int placed = 0;
            int rejected = 0;
            int dotsOnLines = 0;
            int labelsAcrossLines = 0;
            for (int i = 0; i < labels.size(); i++) {
                Label l = labels.get(i);
                Candidates cand = l.candidates();
                if (cand.isEmpty()) continue;
                int[] ring = Footprints.octagonRing(l.px(), l.py(), l.style().dotRadius() + 1);
                AvoidObject dot = add(strict, Kind.DOT, ring, null);
                AvoidObject looseDot;
                if (dot.placedState() == PlacedState.PLACED) {
                    looseDot = loose.newObject().addRing(ring);
                    looseDot.addForced();
                } else {
                    looseDot = loose.newObject().addRing(ring);
                    if (!looseDot.add()) {
                        chosen[i] = DOT_BLOCKED;
                        continue;
                    }
                    dot = strict.newObject().addRing(ring);
                    dot.addForced();
                    dotsOnLines++;
                }
                AvoidObject label = add(strict, Kind.LABEL, null, cand);
                int k = label.placedState() == PlacedState.PLACED
                        ? chosenCandidate(label, cand, i) : -1;
                if (k >= 0) {
                    int[] b = labelBox(l, k);
                    loose.newObject().addRect(b[0], b[1], b[2], b[3]).addForced();
                } else if (l.city().population() >= CROSSES_LINES_FROM) {
                    AvoidObject across = labelObject(loose, cand);
                    if (across.add()) {
                        k = chosenCandidate(across, cand, i);
                        int[] b = labelBox(l, k);
                        strict.newObject().addRect(b[0], b[1], b[2], b[3]).addForced();
                        labelsAcrossLines++;
                    }
                }
                if (k >= 0) {
                    chosen[i] = k;
                    placed++;
                } else {
                    chosen[i] = REJECTED;
                    rejected++;
                    dot.recycle();
                    looseDot.recycle();
                }
            }
            long t0 = System.nanoTime();
            // Every label and dot kept is in both containers, so both list the same number of
            // placed objects beyond the obstacles that only the strict one holds.
            int obstacles =
                    objectsByKind[Kind.BORDER.ordinal()] + objectsByKind[Kind.COAST.ordinal()];
            int strictPlaced = strict.placed().size();
            int loosePlaced = loose.placed().size();
            long readNanos = System.nanoTime() - t0;
            if (strictPlaced != loosePlaced + obstacles) {
                throw new IllegalStateException("the strict container holds " + strictPlaced
                        + " placed objects, the loose one " + loosePlaced + " and " + obstacles
                        + " lines");
            }
            return new Result(chosen, objectsByKind.clone(), placed, rejected, dotsOnLines,
                    labelsAcrossLines, footprintNanos, placeNanos, readNanos);
        }
    }

    // The label of a city: the cells of its first candidate's rectangle, the others as offsets.
    private static AvoidObject labelObject(AvoidContainer c, Candidates cand) {
        int left = cand.left(0);
        int top = cand.top(0);
        AvoidObject label = c.newObject().addRect(
                left, top, left + cand.width() - 1, top + cand.height() - 1);
        for (int k = 1; k < cand.size(); k++) label.addOffset(cand.dx(k), cand.dy(k));
        return label;
    }

    private static int chosenCandidate(AvoidObject label, Candidates cand, int index) {
        int k = label.candidate();
        if (k < 0 || k >= cand.size() || label.offsetX() != cand.dx(k)
                || label.offsetY() != cand.dy(k)) {
            throw new IllegalStateException("label " + index + " placed at candidate " + k
                    + ", offset (" + label.offsetX() + ", " + label.offsetY() + "), which is not"
                    + " one of its " + cand.size() + " candidates");
        }
        return k;
    }

    // Adds a dot (ring given) or a label (candidates given) to the strict container, timed.
    private AvoidObject add(AvoidContainer c, Kind kind, int[] ring, Candidates cand) {
        long t0 = System.nanoTime();
        AvoidObject o = ring != null ? c.newObject().addRing(ring) : labelObject(c, cand);
        long t1 = System.nanoTime();
        o.add();
        count(kind, t0, t1);
        return o;
    }

    private void addPieces(AvoidContainer c, Kind kind, List<int[]> pieces) {
        for (int[] piece : pieces) {
            long t0 = System.nanoTime();
            AvoidObject line = c.newObject().addLine(piece, Scene.LINE_HALF_WIDTH);
            long t1 = System.nanoTime();
            line.addForced();
            count(kind, t0, t1);
        }
    }

    private void count(Kind kind, long t0, long t1) {
        footprintNanos += t1 - t0;
        placeNanos += System.nanoTime() - t1;
        objectsByKind[kind.ordinal()]++;
    }

    /** The cells a city's dot octagon may cover: left, top, right, bottom. */
    static int[] dotBounds(Label l) {
        int r = l.style().dotRadius() + 1;
        return new int[] {l.px() - r, l.py() - r, l.px() + r, l.py() + r};
    }

    /** The cells of candidate k of a label: left, top, right, bottom. */
    static int[] labelBox(Label l, int k) {
        return labelBoxOf(l.candidates(), k);
    }

    /** The cells of candidate k: left, top, right, bottom. */
    static int[] labelBoxOf(Candidates c, int k) {
        return new int[] {c.left(k), c.top(k), c.left(k) + c.width() - 1,
            c.top(k) + c.height() - 1};
    }

    static boolean overlap(int[] a, int[] b) {
        return a[0] <= b[2] && b[0] <= a[2] && a[1] <= b[3] && b[1] <= a[3];
    }
}
