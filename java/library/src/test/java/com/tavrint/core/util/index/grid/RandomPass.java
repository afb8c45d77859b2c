package com.tavrint.core.util.index.grid;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Random;
import java.util.Set;

/**
 * A seeded random placement pass of rectangles (rings) and axis-aligned polylines on a canvas,
 * with the outcome a straightforward model predicts: footprints as sets of cells, placed greedily
 * at the first offset whose shifted cells meet no cell placed before.
 *
 * <p>All corners lie on cell boundaries, so a ring covers exactly the cells between its corners and
 * a segment stroked w cells to each side covers a rectangle 2w cells thick, ending flush at its
 * points.
 */
final class RandomPass {
    static final int WIDTH = 160;
    static final int HEIGHT = 120;

    /** One object: its shapes as the natives take them, its offsets, and whether it is forced. */
    static final class Item {
        final long id;
        final List<int[]> rings = new ArrayList<>();
        final List<int[]> lines = new ArrayList<>(); // coords followed by the width
        final List<int[]> offsets = new ArrayList<>(); // after the implicit (0, 0)
        final Set<Long> cells = new HashSet<>();
        boolean forced;

        Item(long id) {
            this.id = id;
        }
    }

    /** What a pass must give: ids in placement and failure order, each object's x offset. */
    record Outcome(List<Long> placed, List<Long> unplaced, List<Integer> offsetX) {
        Outcome() {
            this(new ArrayList<>(), new ArrayList<>(), new ArrayList<>());
        }
    }

    final long seed;
    final List<Item> items = new ArrayList<>();

    RandomPass(long seed, int count) {
        this.seed = seed;
        Random r = new Random(seed);
        for (int i = 0; i < count; i++) {
            Item item = new Item(1000 + i);
            if (r.nextBoolean()) {
                int x = r.nextInt(WIDTH - 24), y = r.nextInt(HEIGHT - 24);
                int w = 1 + r.nextInt(24), h = 1 + r.nextInt(24);
                item.rings.add(new int[] {x, y, x + w, y, x + w, y + h, x, y + h});
                fill(item.cells, x, y, x + w, y + h);
            } else {
                // An L: horizontal, then vertical, stroked width cells to each side.
                int width = 1 + r.nextInt(3);
                int x0 = 4 + r.nextInt(WIDTH - 8), x1 = 4 + r.nextInt(WIDTH - 8);
                int y0 = 4 + r.nextInt(HEIGHT - 8), y1 = 4 + r.nextInt(HEIGHT - 8);
                if (x0 == x1) x1 = x0 + 1;
                if (y0 == y1) y1 = y0 + 1;
                item.lines.add(new int[] {x0, y0, x1, y0, x1, y1, width});
                fill(item.cells, Math.min(x0, x1), y0 - width, Math.max(x0, x1), y0 + width);
                fill(item.cells, x1 - width, Math.min(y0, y1), x1 + width, Math.max(y0, y1));
            }
            for (int k = r.nextInt(4); k > 0; k--) {
                item.offsets.add(new int[] {r.nextInt(61) - 30, r.nextInt(61) - 30});
            }
            item.forced = r.nextInt(10) == 0;
            items.add(item);
        }
    }

    // Cells [x0, x1) x [y0, y1).
    private static void fill(Set<Long> cells, int x0, int y0, int x1, int y1) {
        for (int x = x0; x < x1; x++) {
            for (int y = y0; y < y1; y++) {
                cells.add(key(x, y));
            }
        }
    }

    private static long key(int x, int y) {
        return ((long) x << 32) ^ (y & 0xffffffffL);
    }

    /** The outcome by the model. */
    Outcome expected() {
        Outcome out = new Outcome();
        Set<Long> occupied = new HashSet<>();
        for (Item item : items) {
            List<int[]> candidates = new ArrayList<>();
            candidates.add(new int[] {0, 0});
            candidates.addAll(item.offsets);
            int[] chosen = item.forced ? candidates.get(0) : null;
            for (int i = 0; chosen == null && i < candidates.size(); i++) {
                if (!hits(occupied, item.cells, candidates.get(i))) {
                    chosen = candidates.get(i);
                }
            }
            if (chosen == null) {
                out.unplaced().add(item.id);
                out.offsetX().add(0);
                continue;
            }
            out.placed().add(item.id);
            out.offsetX().add(chosen[0]);
            for (long c : item.cells) {
                occupied.add(shift(c, chosen));
            }
        }
        return out;
    }

    private static boolean hits(Set<Long> occupied, Set<Long> cells, int[] offset) {
        return cells.stream().anyMatch(c -> occupied.contains(shift(c, offset)));
    }

    private static long shift(long cell, int[] offset) {
        return key((int) (cell >> 32) + offset[0], (int) cell + offset[1]);
    }

    /** Runs the pass through the raw natives on a container whose canvas is set. */
    Outcome run(long c) {
        Outcome out = new Outcome();
        List<Long> handles = new ArrayList<>();
        for (Item item : items) {
            long obj = CAvoidContainerWrap.CreateAvoidObject(c);
            CAvoidContainerWrap.AvoidObject_SetID(obj, item.id);
            for (int[] ring : item.rings) {
                CAvoidContainerWrap.AvoidObject_AddRing(obj, ring);
            }
            for (int[] line : item.lines) {
                int[] coords = java.util.Arrays.copyOf(line, line.length - 1);
                CAvoidContainerWrap.AvoidObject_AddLines(obj, coords, line[line.length - 1]);
            }
            for (int[] offset : item.offsets) {
                CAvoidContainerWrap.AvoidObject_AddOffset(obj, offset[0], offset[1]);
            }
            if (item.forced) {
                CAvoidContainerWrap.AddAvoidObjectForce(c, obj);
            } else {
                CAvoidContainerWrap.AddAvoidObject(c, obj);
            }
            handles.add(obj);
        }
        for (long obj : handles) {
            out.offsetX().add(CAvoidContainerWrap.AvoidObject_Offset(obj)[0]);
        }
        ids(CAvoidContainerWrap.AllPlacedObject(c), out.placed());
        ids(CAvoidContainerWrap.AllUnPlacedObject(c), out.unplaced());
        return out;
    }

    private static void ids(long[] handles, List<Long> into) {
        for (long h : handles == null ? new long[0] : handles) {
            into.add(CAvoidContainerWrap.AvoidObject_GetID(h));
        }
    }
}
