package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
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
        return LabelPass.labelBox(l, k);
    }

    private static boolean overlap(int[] a, int[] b) {
        return LabelPass.overlap(a, b);
    }

    // The cells a dot's octagon surely covers: its centre pixel.
    private static int[] dotCore(Label l) {
        return new int[] {l.px(), l.py(), l.px(), l.py()};
    }

    @Test
    void randomScenesPlaceGreedilyInOrderOfPopulation() {
        long seed = 20240521L;
        Random rng = new Random(seed);
        for (int round = 0; round < 5; round++) {
            List<City> cities = new ArrayList<>();
            for (int i = 0; i < 150; i++) {
                long population = 2_000_000L >> rng.nextInt(8);
                cities.add(city("C" + i + "x".repeat(rng.nextInt(8)), rng.nextDouble() * 6,
                        rng.nextDouble() * 4, population));
            }
            cities.sort((a, b) -> Long.compare(b.population(), a.population()));
            Scene s = scene(cities);
            LabelPass.Result r = new LabelPass(s, false).run();
            String where = "seed " + seed + " round " + round;
            List<Label> labels = s.labels();
            int[] chosen = r.chosen();
            int placed = 0;
            for (int i = 0; i < labels.size(); i++) {
                int k = chosen[i];
                assertTrue(k >= LabelPass.DOT_BLOCKED && k < labels.get(i).candidates().size(),
                        where);
                if (k >= 0) {
                    placed++;
                    int[] mine = box(labels.get(i), k);
                    for (int[] reserved : s.reservedBoxes()) {
                        assertFalse(overlap(mine, reserved), "label on a reserved box, " + where);
                    }
                    for (int j = 0; j < labels.size(); j++) {
                        if (j == i || chosen[j] < 0) continue;
                        assertFalse(overlap(mine, dotCore(labels.get(j))),
                                "label " + i + " on the kept dot of " + j + ", " + where);
                        assertFalse(overlap(mine, box(labels.get(j), chosen[j])),
                                "labels " + j + " and " + i + " overlap, " + where);
                    }
                }
                // Every candidate tried before the chosen one (all of them when rejected) was
                // blocked by a reserved box or by what a larger city kept: its label or its dot's
                // square. Smaller cities were not on the map yet; dropped ones were taken off.
                int tried = k >= 0 ? k : (k == LabelPass.REJECTED ? labels.get(i).candidates()
                        .size() : 0);
                for (int t = 0; t < tried; t++) {
                    int[] cand = box(labels.get(i), t);
                    boolean blocked = overlap(cand, LabelPass.dotBounds(labels.get(i)));
                    for (int j = 0; j < i && !blocked; j++) {
                        blocked = chosen[j] >= 0 && (overlap(cand, box(labels.get(j), chosen[j]))
                                || overlap(cand, LabelPass.dotBounds(labels.get(j))));
                    }
                    for (int[] reserved : s.reservedBoxes()) {
                        blocked = blocked || overlap(cand, reserved);
                    }
                    assertTrue(blocked, "label " + i + " skipped a free candidate " + t + ", "
                            + where);
                }
                // A dot is refused only where a larger city or a reserved box kept the room.
                if (k == LabelPass.DOT_BLOCKED) {
                    int[] square = LabelPass.dotBounds(labels.get(i));
                    boolean blocked = false;
                    for (int[] reserved : s.reservedBoxes()) {
                        blocked = blocked || overlap(square, reserved);
                    }
                    for (int j = 0; j < i && !blocked; j++) {
                        blocked = chosen[j] >= 0 && (overlap(square, box(labels.get(j), chosen[j]))
                                || overlap(square, LabelPass.dotBounds(labels.get(j))));
                    }
                    assertTrue(blocked, "dot " + i + " refused on free ground, " + where);
                }
            }
            assertEquals(placed, r.placedLabels(), where);
            assertTrue(r.placedLabels() > 0 && r.rejectedLabels() > 0, where);
            assertEquals(0, r.dotsOnLines() + r.labelsAcrossLines(), "no lines, " + where);
        }
    }

    @Test
    void aLargeCityKeepsItsLabelAgainstTheDotsOfSmallerOnes() {
        // The small towns' dots stand right where the big city's label goes first.
        List<City> cities = List.of(city("Metropolis", 3, 2, 3_000_000),
                city("Hamlet", 3.25, 2, 900), city("Village", 3.35, 2.02, 800));
        Scene s = scene(cities);
        LabelPass.Result r = new LabelPass(s, false).run();
        assertEquals(0, r.chosen()[0], "the big city's label takes its first candidate");
        assertTrue(r.chosen()[1] < 0 && r.chosen()[2] < 0, "the towns under it are dropped");
    }

    @Test
    void linesGiveWayToDotsAndToLargeCitiesLabelsOnly() {
        // A border through every city, and a grid of borders around them that every candidate
        // crosses.
        List<Polyline> borders = new ArrayList<>();
        for (double x = 0.25; x < 6; x += 0.25) borders.add(new Polyline(new double[] {x, 0, x, 4}));
        for (double y = 0.25; y < 4; y += 0.25) borders.add(new Polyline(new double[] {0, y, 6, y}));
        List<City> cities = List.of(city("Larger", 4, 2, 3_000_000), city("Large", 1, 2, 300_000),
                city("Small", 2.5, 1, 1_000));
        Scene s = Scene.build(CANVAS, cities, borders, List.of(), 3, 1);
        assertEquals(List.of("Larger", "Large", "Small"),
                s.labels().stream().map(l -> l.city().name()).toList());
        LabelPass.Result r = new LabelPass(s, false).run();
        assertTrue(r.chosen()[0] >= 0 && r.chosen()[1] >= 0, "large cities cross the lines");
        assertEquals(LabelPass.REJECTED, r.chosen()[2], "a small town does not");
        assertEquals(2, r.labelsAcrossLines());
        assertEquals(3, r.dotsOnLines(), "every dot sits on a line and is kept");
    }

}
