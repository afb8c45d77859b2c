package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import org.junit.jupiter.api.Test;

class FootprintsTest {
    @Test
    void ringsRunAlongTheOuterEdgesAndCanvasTestIsInclusive() {
        assertArrayEquals(new int[] {2, 3, 6, 3, 6, 5, 2, 5}, Footprints.rectangleRing(2, 3, 5, 4));
        // Octagon of radius 3 about cell (10, 20): cells 7..13 and 17..23.
        assertArrayEquals(new int[] {7, 17, 14, 24}, bounds(Footprints.octagonRing(10, 20, 3)));
        assertTrue(Footprints.touchesCanvas(new int[] {-10, -10, 0, 0}, 100, 50));
        assertTrue(Footprints.touchesCanvas(new int[] {99, 49, 150, 80}, 100, 50));
        assertFalse(Footprints.touchesCanvas(new int[] {100, 0, 150, 20}, 100, 50));
        assertFalse(Footprints.touchesCanvas(new int[] {-5, -20, 200, -1}, 100, 50));
        assertTrue(Footprints.touchesCanvas(new int[] {-10, 25, 110, 25}, 100, 50), "crossing");
    }

    private static int[] bounds(int[] xy) {
        int[] b = {Integer.MAX_VALUE, Integer.MAX_VALUE, Integer.MIN_VALUE, Integer.MIN_VALUE};
        for (int i = 0; i < xy.length; i += 2) {
            b[0] = Math.min(b[0], xy[i]);
            b[1] = Math.min(b[1], xy[i + 1]);
            b[2] = Math.max(b[2], xy[i]);
            b[3] = Math.max(b[3], xy[i + 1]);
        }
        return b;
    }

    @Test
    void splitPiecesShareEndsAndRebuildTheLine() {
        long seed = 4242L;
        Random rng = new Random(seed);
        for (int round = 0; round < 500; round++) {
            int n = 2 + rng.nextInt(60);
            int[] xy = new int[2 * n];
            int x = 0, y = 0;
            for (int i = 0; i < n; i++) {
                // Small steps with repeats, now and then a long jump, every 50th round none.
                int step = round % 50 == 0 ? 0 : rng.nextInt(10) == 0 ? 200 : 12;
                x += rng.nextInt(2 * step + 1) - step;
                y += rng.nextInt(2 * step + 1) - step;
                xy[2 * i] = x;
                xy[2 * i + 1] = y;
            }
            int span = 5 + rng.nextInt(60);
            String where = "seed " + seed + " round " + round;
            List<int[]> pieces = Footprints.splitPolyline(xy, span);
            int[] expected = Footprints.dropRepeatedVertices(xy);
            if (expected.length < 4) {
                assertTrue(pieces.isEmpty(), where);
                continue;
            }
            List<Integer> rebuilt = new ArrayList<>();
            for (int[] p : pieces) {
                assertTrue(p.length >= 4, where);
                if (!rebuilt.isEmpty()) {
                    assertEquals(rebuilt.get(rebuilt.size() - 2), p[0], where);
                    assertEquals(rebuilt.get(rebuilt.size() - 1), p[1], where);
                }
                for (int i = rebuilt.isEmpty() ? 0 : 2; i < p.length; i++) rebuilt.add(p[i]);
                for (int i = 2; i < p.length; i += 2) {
                    assertFalse(p[i] == p[i - 2] && p[i + 1] == p[i - 1], "zero length, " + where);
                }
                int[] b = bounds(p);
                assertTrue(p.length == 4 || (b[2] - b[0] <= span && b[3] - b[1] <= span), where);
            }
            assertArrayEquals(expected, rebuilt.stream().mapToInt(Integer::intValue).toArray(),
                    where);
        }
    }
}
