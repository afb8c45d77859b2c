package com.tavrint.demo;

import com.tavrint.core.util.index.grid.AvoidContainer;
import com.tavrint.core.util.index.grid.AvoidObject;
import com.tavrint.core.util.index.grid.PlacedState;
import com.tavrint.demo.Scene.Label;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.IdentityHashMap;
import java.util.List;
import java.util.Map;

/**
 * One placement pass of a scene through the library, ordered as a cartographer orders a map.
 *
 * <p>First the obstacles: the border pieces and, when asked, the coast pieces, forced as stroked
 * lines, and the reserved boxes (the legend's panel), forced as rectangles of cells. Then the
 * cities in the scene's order (by order of size, capitals first within one), each with its dot and
 * its label together: the dot (an octagon ring) is added, not forced, and then the label (the
 * rectangle of its preferred candidate, the others as offsets). A city whose dot finds no place,
 * or whose label finds none, is dropped: its dot is recycled, so that it blocks no smaller city.
 * So nothing of a smaller city can block a larger one.
 *
 * <p>A label prefers the positions that cover no dot of a city still to come of nearly its size
 * (its style or the next smaller one): those are tried first, the others after them, each group
 * in the order of its {@link Candidates}. So a name keeps off the dot of a neighbour that comes
 * soon after it whenever it has a free position elsewhere, and blocks it only when it has not.
 *
 * <p>After the pass each label left out is asked for its blockers: per position, the object
 * placed before it that overlaps it there, named as a reader would (a city's name or dot, a
 * border, the panel).
 *
 * <p>Lines are soft obstacles. The pass runs two containers side by side: a strict one with every
 * obstacle and a loose one without the lines; whatever is kept goes into both. A dot that only a
 * line refuses (it sits on a border) is kept; a label of a city of at least {@link
 * #CROSSES_LINES_FROM} inhabitants that finds no place clear of the lines may cross one, so that
 * no large city loses its name to a border drawn through its suburbs.
 *
 * <p>The candidate a label was placed at is the object's {@link AvoidObject#candidate()}, read
 * through the order its offsets were added in.
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
     * DOT_BLOCKED, and its story; object counts (of the strict container); the dots kept on a line
     * and the labels that cross one; and the nanoseconds spent building footprints, placing and reading the
     * results.
     */
    public record Result(int[] chosen, Story[] stories, int[] objectsByKind, int placedLabels,
            int rejectedLabels, int dotsOnLines, int labelsAcrossLines, long footprintNanos,
            long placeNanos, long readNanos) {
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

    /** What blocked a position: a border, a coast, the panel, or a city's label or dot. */
    public static final String BORDER = "border";
    public static final String COAST = "coast";
    public static final String PANEL = "panel";
    /** A position that does not fit the canvas, never offered to the library. */
    public static final String OFF_CANVAS = "off canvas";

    /** An object of the pass as a reader names it, and the pixel where it stands. */
    public record Blocker(String name, int x, int y) {}

    /**
     * What happened to one city in the pass: the order its positions were tried in, the positions
     * put last because they cover the dot of a city still to come (with that city's name), and
     * for a city left out what blocked each position (indexed by candidate) or its dot.
     */
    public static final class Story {
        final int index;
        int[] order = new int[0];
        final Map<Integer, String> deferred = new HashMap<>();
        Blocker[] blockers;
        Blocker dotBlocker;
        boolean dotOnLine;
        boolean acrossLine;

        Story(int index) {
            this.index = index;
        }

        /** The blocker of candidate k of a label left out, or null where nothing was. */
        public Blocker blocker(int k) {
            return blockers == null ? null : blockers[k];
        }

        /** The first blocker in the order the positions were tried, or null. */
        public Blocker firstBlocker() {
            if (dotBlocker != null) return dotBlocker;
            for (int k : order) {
                if (blocker(k) != null) return blocker(k);
            }
            return null;
        }
    }

    private final Scene scene;
    private final boolean coastAsObstacle;
    // What each object of either container stands for, to name the blockers.
    private final Map<AvoidObject, Blocker> what = new IdentityHashMap<>();
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
                AvoidObject looseBox = loose.newObject().addRect(b[0], b[1], b[2], b[3]);
                looseBox.addForced();
                Blocker panel = new Blocker(PANEL, (b[0] + b[2]) / 2, (b[1] + b[3]) / 2);
                what.put(box, panel);
                what.put(looseBox, panel);
            }

            List<Label> labels = scene.labels();
            UpcomingDots upcoming = new UpcomingDots(labels);
            int[] chosen = new int[labels.size()];
            Arrays.fill(chosen, NOT_OFFERED);
            Story[] stories = new Story[labels.size()];
            // Rejected labels, asked for their blockers once the pass is over.
            List<AvoidObject> rejectedLabel = new ArrayList<>();
            List<int[]> rejectedOrder = new ArrayList<>();
            List<Integer> rejectedIndex = new ArrayList<>();
            List<AvoidObject> blockedDot = new ArrayList<>();
            List<Integer> blockedDotIndex = new ArrayList<>();
            int placed = 0;
            int rejected = 0;
            int dotsOnLines = 0;
            int labelsAcrossLines = 0;
            for (int i = 0; i < labels.size(); i++) {
                Label l = labels.get(i);
                Candidates cand = l.candidates();
                stories[i] = new Story(i);
                if (cand.isEmpty()) continue;
                String name = l.city().name();
                Blocker dotIs = new Blocker(name + " (dot)", l.px(), l.py());
                int[] ring = Footprints.octagonRing(l.px(), l.py(), l.style().dotRadius() + 1);
                AvoidObject dot = add(strict, Kind.DOT, ring, null, null);
                AvoidObject looseDot;
                if (dot.placedState() == PlacedState.PLACED) {
                    looseDot = loose.newObject().addRing(ring);
                    looseDot.addForced();
                } else {
                    looseDot = loose.newObject().addRing(ring);
                    if (!looseDot.add()) {
                        chosen[i] = DOT_BLOCKED;
                        blockedDot.add(looseDot);
                        blockedDotIndex.add(i);
                        continue;
                    }
                    stories[i].dotOnLine = true;
                    dot = strict.newObject().addRing(ring);
                    dot.addForced();
                    dotsOnLines++;
                }
                what.put(dot, dotIs);
                what.put(looseDot, dotIs);
                upcoming.passed(i);
                // Positions that cover no dot of a city still to come of nearly this size go
                // first; the library takes the first free one in this order.
                int[] order = upcoming.preferredOrder(i, cand, stories[i].deferred);
                stories[i].order = order;
                AvoidObject label = add(strict, Kind.LABEL, null, cand, order);
                int k = label.placedState() == PlacedState.PLACED
                        ? chosenCandidate(label, cand, order, i) : -1;
                AvoidObject kept = null;
                AvoidObject keptLoose = null;
                if (k >= 0) {
                    kept = label;
                    int[] b = labelBox(l, k);
                    keptLoose = loose.newObject().addRect(b[0], b[1], b[2], b[3]);
                    keptLoose.addForced();
                } else if (l.city().population() >= CROSSES_LINES_FROM) {
                    AvoidObject across = labelObject(loose, cand, order);
                    if (across.add()) {
                        k = chosenCandidate(across, cand, order, i);
                        int[] b = labelBox(l, k);
                        keptLoose = across;
                        kept = strict.newObject().addRect(b[0], b[1], b[2], b[3]);
                        kept.addForced();
                        labelsAcrossLines++;
                        stories[i].acrossLine = true;
                    } else {
                        // Lines did not decide: what blocked it in the container without them.
                        label = across;
                    }
                }
                if (k >= 0) {
                    chosen[i] = k;
                    placed++;
                    int[] b = labelBox(l, k);
                    Blocker labelIs = new Blocker(name, (b[0] + b[2]) / 2, (b[1] + b[3]) / 2);
                    what.put(kept, labelIs);
                    what.put(keptLoose, labelIs);
                } else {
                    chosen[i] = REJECTED;
                    rejected++;
                    rejectedLabel.add(label);
                    rejectedOrder.add(order);
                    rejectedIndex.add(i);
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
            // Asked once the pass is over, when the placed objects are filed for the question
            // once: the blockers of a dot or a label are objects placed before it.
            for (int j = 0; j < blockedDot.size(); j++) {
                stories[blockedDotIndex.get(j)].dotBlocker =
                        describe(blockedDot.get(j).blockers().get(0));
            }
            for (int j = 0; j < rejectedLabel.size(); j++) {
                List<AvoidObject> blockers = rejectedLabel.get(j).blockers();
                int[] order = rejectedOrder.get(j);
                Story story = stories[rejectedIndex.get(j)];
                story.blockers = new Blocker[order.length];
                for (int n = 0; n < order.length; n++) {
                    story.blockers[order[n]] = describe(blockers.get(n));
                }
            }
            return new Result(chosen, stories, objectsByKind.clone(), placed, rejected,
                    dotsOnLines, labelsAcrossLines, footprintNanos, placeNanos, readNanos);
        }
    }

    private Blocker describe(AvoidObject o) {
        if (o == null) return null;
        Blocker b = what.get(o);
        if (b == null) throw new IllegalStateException("a blocker the pass did not add");
        return b;
    }

    // The label of a city: the cells of its candidate order[0]'s rectangle, the others in the
    // given order as offsets from it.
    private static AvoidObject labelObject(AvoidContainer c, Candidates cand, int[] order) {
        int left = cand.left(order[0]);
        int top = cand.top(order[0]);
        AvoidObject label = c.newObject().addRect(
                left, top, left + cand.width() - 1, top + cand.height() - 1);
        for (int n = 1; n < order.length; n++) {
            label.addOffset(cand.left(order[n]) - left, cand.top(order[n]) - top);
        }
        return label;
    }

    // The candidate a label was placed at: the object's offsets follow the given order.
    private static int chosenCandidate(AvoidObject label, Candidates cand, int[] order,
            int index) {
        int n = label.candidate();
        int k = n >= 0 && n < order.length ? order[n] : -1;
        if (k < 0 || label.offsetX() != cand.left(k) - cand.left(order[0])
                || label.offsetY() != cand.top(k) - cand.top(order[0])) {
            throw new IllegalStateException("label " + index + " placed at offset " + n + ", ("
                    + label.offsetX() + ", " + label.offsetY() + "), which is not one of its "
                    + cand.size() + " candidates");
        }
        return k;
    }

    // Adds a dot (ring given) or a label (candidates and their order given) to the strict
    // container, timed.
    private AvoidObject add(AvoidContainer c, Kind kind, int[] ring, Candidates cand,
            int[] order) {
        long t0 = System.nanoTime();
        AvoidObject o = ring != null ? c.newObject().addRing(ring) : labelObject(c, cand, order);
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
            int[] mid = Footprints.middle(piece);
            what.put(line, new Blocker(kind == Kind.BORDER ? BORDER : COAST, mid[0], mid[1]));
            count(kind, t0, t1);
        }
    }

    private void count(Kind kind, long t0, long t1) {
        footprintNanos += t1 - t0;
        placeNanos += System.nanoTime() - t1;
        objectsByKind[kind.ordinal()]++;
    }

    /**
     * The dots of the cities still to come, by buckets of the canvas: a label puts last the
     * positions that cover the dot of a city still to come of nearly its size (its own style or
     * the next smaller one), so that it takes a free position clear of them where it has one.
     */
    static final class UpcomingDots {
        private static final int BUCKET = 32;
        private final List<Label> labels;
        private final Map<Long, List<Integer>> buckets = new HashMap<>();
        private final boolean[] passed;

        UpcomingDots(List<Label> labels) {
            this.labels = labels;
            this.passed = new boolean[labels.size()];
            for (int j = 0; j < labels.size(); j++) {
                int[] d = dotBounds(labels.get(j));
                for (long bx = Math.floorDiv(d[0], BUCKET); bx <= Math.floorDiv(d[2], BUCKET); bx++) {
                    for (long by = Math.floorDiv(d[1], BUCKET); by <= Math.floorDiv(d[3], BUCKET);
                            by++) {
                        buckets.computeIfAbsent(key(bx, by), x -> new ArrayList<>()).add(j);
                    }
                }
            }
        }

        /** City i has had its turn: its dot is no longer to come. */
        void passed(int i) {
            passed[i] = true;
        }

        /**
         * The candidates of label i, those that cover no dot to come first, each group in its
         * own order; puts into deferred each position put last with the name of the first city
         * whose dot it covers.
         */
        int[] preferredOrder(int i, Candidates cand, Map<Integer, String> deferred) {
            int tier = labels.get(i).style().ordinal();
            int[] order = new int[cand.size()];
            int n = 0;
            List<Integer> last = new ArrayList<>();
            for (int k = 0; k < cand.size(); k++) {
                int[] box = labelBoxOf(cand, k);
                int cover = Integer.MAX_VALUE;
                for (long bx = Math.floorDiv(box[0], BUCKET); bx <= Math.floorDiv(box[2], BUCKET);
                        bx++) {
                    for (long by = Math.floorDiv(box[1], BUCKET);
                            by <= Math.floorDiv(box[3], BUCKET); by++) {
                        for (int j : buckets.getOrDefault(key(bx, by), List.of())) {
                            Label other = labels.get(j);
                            if (j < cover && !passed[j] && !other.candidates().isEmpty()
                                    && other.style().ordinal() <= tier + 1
                                    && overlap(box, dotBounds(other))) {
                                cover = j;
                            }
                        }
                    }
                }
                if (cover == Integer.MAX_VALUE) {
                    order[n++] = k;
                } else {
                    last.add(k);
                    deferred.put(k, labels.get(cover).city().name());
                }
            }
            for (int k : last) order[n++] = k;
            return order;
        }

        private static long key(long bx, long by) {
            return (bx << 32) ^ (by & 0xffffffffL);
        }
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
