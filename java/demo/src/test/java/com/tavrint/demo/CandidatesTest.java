package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.Candidates.Position;
import java.util.HashSet;
import java.util.Random;
import java.util.Set;
import org.junit.jupiter.api.Test;

class CandidatesTest {
    @Test
    void firstCandidateStandsRightOfThePointUnlessAtTheRightEdge() {
        Candidates c = Candidates.around(100.0, 50.0, 4.0, 30, 12, 400, 200);
        assertEquals(Position.RIGHT, c.position(0));
        assertArrayEquals(new int[] {0, 0, 104, 44}, new int[] {c.dx(0), c.dy(0), c.left(0), c.top(0)});
        assertEquals(Position.values().length, c.size());
        Candidates edge = Candidates.around(395.0, 100.0, 3.0, 30, 10, 400, 200);
        assertEquals(Position.LEFT, edge.position(0));
        for (int i = 0; i < edge.size(); i++) {
            Position p = edge.position(i);
            assertTrue(p.name().contains("LEFT") || p == Position.ABOVE || p == Position.BELOW);
        }
        Candidates none = Candidates.around(50.0, 50.0, 3.0, 120, 10, 100, 100);
        assertTrue(none.isEmpty(), "a label wider than the canvas has no candidate");
        assertEquals(-1, none.indexOfDx(0));
    }

    @Test
    void randomCandidatesFitTheCanvasStayNearTheirPlaceAndDecodeFromDx() {
        long seed = 12345L;
        Random rng = new Random(seed);
        for (int round = 0; round < 3000; round++) {
            int cw = 40 + rng.nextInt(400), ch = 20 + rng.nextInt(300);
            double px = rng.nextDouble() * cw, py = rng.nextDouble() * ch;
            int w = 1 + rng.nextInt(60), h = 1 + rng.nextInt(20);
            double clearance = rng.nextDouble() * 6;
            Candidates c = Candidates.around(px, py, clearance, w, h, cw, ch);
            Set<Integer> dxs = new HashSet<>();
            String where = "seed " + seed + " round " + round;
            for (int i = 0; i < c.size(); i++) {
                assertTrue(dxs.add(c.dx(i)), "repeated dx, " + where);
                assertEquals(i, c.indexOfDx(c.dx(i)), where);
                assertTrue(c.left(i) >= 0 && c.left(i) + w <= cw, where);
                assertTrue(c.top(i) >= 0 && c.top(i) + h <= ch, where);
                double natural = naturalLeft(c.position(i), px, clearance, w);
                assertTrue(Math.abs(c.left(i) - natural) <= Candidates.MAX_NUDGE + 0.5, where);
            }
        }
    }

    // Where each position puts a box's left edge before any nudge.
    private static double naturalLeft(Position p, double px, double clearance, int w) {
        double diag = clearance / Math.sqrt(2);
        return switch (p) {
            case RIGHT -> px + clearance;
            case LEFT -> px - clearance - w;
            case ABOVE, BELOW -> px - w / 2.0;
            case UPPER_RIGHT, LOWER_RIGHT -> px + diag;
            case UPPER_LEFT, LOWER_LEFT -> px - diag - w;
        };
    }
}
