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
    void rectangleRingRunsAlongTheOuterEdgesOfTheCornerCells() {
        assertArrayEquals(new int[] {2, 3, 6, 3, 6, 5, 2, 5}, Footprints.rectangleRing(2, 3, 5, 4));
    }

    @Test
    void octagonReachesTheRadiusOnEverySide() {
        int[] ring = Footprints.octagonRing(10, 20, 3);
        assertEquals(16, ring.length);
        int minX = Integer.MAX_VALUE, maxX = Integer.MIN_VALUE;
        int minY = Integer.MAX_VALUE, maxY = Integer.MIN_VALUE;
        for (int i = 0; i < ring.length; i += 2) {
            minX = Math.min(minX, ring[i]);
            maxX = Math.max(maxX, ring[i]);
            minY = Math.min(minY, ring[i + 1]);
            maxY = Math.max(maxY, ring[i + 1]);
        }
        // Cells 7..13 and 17..23: three cells out from the centre cell on each side.
        assertEquals(7, minX);
        assertEquals(14, maxX);
        assertEquals(17, minY);
        assertEquals(24, maxY);
    }

    @Test
    void splitPiecesShareEndsAndRebuildTheLine() {
        long seed = 4242L;
        Random rng = new Random(seed);
        for (int round = 0; round < 500; round++) {
            int n = 2 + rng.nextInt(60);
            int[] xy = new int[2 * n];
            int x = 0;
            int y = 0;
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
                int minX = Integer.MAX_VALUE, maxX = Integer.MIN_VALUE;
                int minY = Integer.MAX_VALUE, maxY = Integer.MIN_VALUE;
                for (int i = 0; i < p.length; i += 2) {
                    if (i >= 2) {
                        assertFalse(p[i] == p[i - 2] && p[i + 1] == p[i - 1], "zero length, " + where);
                    }
                    minX = Math.min(minX, p[i]);
                    maxX = Math.max(maxX, p[i]);
                    minY = Math.min(minY, p[i + 1]);
                    maxY = Math.max(maxY, p[i + 1]);
                }
                boolean oneSegment = p.length == 4;
                assertTrue(oneSegment || (maxX - minX <= span && maxY - minY <= span), where);
            }
            assertArrayEquals(expected, rebuilt.stream().mapToInt(Integer::intValue).toArray(),
                    where);
        }
    }

    @Test
    void canvasTestIsInclusiveOfTheEdgeCells() {
        assertTrue(Footprints.touchesCanvas(new int[] {-10, -10, 0, 0}, 100, 50));
        assertTrue(Footprints.touchesCanvas(new int[] {99, 49, 150, 80}, 100, 50));
        assertFalse(Footprints.touchesCanvas(new int[] {100, 0, 150, 20}, 100, 50));
        assertFalse(Footprints.touchesCanvas(new int[] {-5, -20, 200, -1}, 100, 50));
        // A line crossing the canvas with both ends outside it.
        assertTrue(Footprints.touchesCanvas(new int[] {-10, 25, 110, 25}, 100, 50));
    }
}
