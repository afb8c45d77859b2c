package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.Scene.Label;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import org.junit.jupiter.api.Test;

/** Passes through the native library, checked against what a greedy placement must satisfy. */
class LabelPassTest {
    private static final Projection CANVAS = new Projection(600, 400, 0, 0, 6, 4);

    private static City city(String name, double lon, double lat, long population) {
        return new City(name, lon, lat, population, "XX");
    }

    private static Scene scene(List<City> cities) {
        return Scene.build(CANVAS, cities, List.of(), List.of(), cities.size(), 1);
    }

    private static int[] box(Label l, int k) {
        Candidates c = l.candidates();
        return new int[] {c.left(k), c.top(k), c.left(k) + c.width() - 1,
            c.top(k) + c.height() - 1};
    }

    private static boolean overlap(int[] a, int[] b) {
        return a[0] <= b[2] && b[0] <= a[2] && a[1] <= b[3] && b[1] <= a[3];
    }

    // The cells a dot's octagon surely covers: its centre pixel.
    private static int[] dotCore(Label l) {
        return new int[] {l.px(), l.py(), l.px(), l.py()};
    }

    // The bounding box of a dot's octagon: cells it may cover.
    private static int[] dotBounds(Label l) {
        int r = l.style().dotRadius() + 1;
        return new int[] {l.px() - r, l.py() - r, l.px() + r, l.py() + r};
    }

    @Test
    void randomScenesPlaceGreedilyWithoutOverlap() {
        long seed = 20240521L;
        Random rng = new Random(seed);
        for (int round = 0; round < 5; round++) {
            List<City> cities = new ArrayList<>();
            for (int i = 0; i < 150; i++) {
                long population = 2_000_000L >> rng.nextInt(8);
                cities.add(city("C" + i + "x".repeat(rng.nextInt(8)), rng.nextDouble() * 6,
                        rng.nextDouble() * 4, population));
            }
            Scene s = scene(cities);
            LabelPass.Result r = new LabelPass(s, false).run();
            String where = "seed " + seed + " round " + round;
            List<Label> labels = s.labels();
            int placed = 0;
            for (int i = 0; i < labels.size(); i++) {
                int k = r.chosen()[i];
                assertTrue(k >= -2 && k < labels.get(i).candidates().size(), where);
                if (k >= 0) {
                    placed++;
                    int[] mine = box(labels.get(i), k);
                    for (Label other : labels) {
                        assertFalse(overlap(mine, dotCore(other)), "label on a dot, " + where);
                    }
                    for (int[] reserved : s.reservedBoxes()) {
                        assertFalse(overlap(mine, reserved), "label on a reserved box, " + where);
                    }
                    for (int j = 0; j < i; j++) {
                        if (r.chosen()[j] >= 0) {
                            assertFalse(overlap(mine, box(labels.get(j), r.chosen()[j])),
                                    "labels " + j + " and " + i + " overlap, " + where);
                        }
                    }
                }
                // Every candidate tried before the chosen one (all of them when rejected) was
                // blocked by an earlier label or a reserved box, or could be blocked by a dot.
                int tried = k >= 0 ? k : (k == LabelPass.REJECTED ? labels.get(i).candidates()
                        .size() : 0);
                for (int t = 0; t < tried; t++) {
                    int[] cand = box(labels.get(i), t);
                    boolean blocked = false;
                    for (int j = 0; j < i && !blocked; j++) {
                        blocked = r.chosen()[j] >= 0
                                && overlap(cand, box(labels.get(j), r.chosen()[j]));
                    }
                    for (int j = 0; j < labels.size() && !blocked; j++) {
                        blocked = overlap(cand, dotBounds(labels.get(j)));
                    }
                    for (int[] reserved : s.reservedBoxes()) {
                        blocked = blocked || overlap(cand, reserved);
                    }
                    assertTrue(blocked, "label " + i + " skipped a free candidate " + t + ", "
                            + where);
                }
            }
            assertEquals(placed, r.placedLabels(), where);
            assertTrue(r.placedLabels() > 0 && r.rejectedLabels() > 0, where);
        }
    }

    @Test
    void idsKeepKindAndIndex() {
        for (LabelPass.Kind kind : LabelPass.Kind.values()) {
            long id = LabelPass.id(kind, Integer.MAX_VALUE);
            assertEquals(kind, LabelPass.kindOf(id));
            assertEquals(Integer.MAX_VALUE, LabelPass.indexOf(id));
        }
    }
}
