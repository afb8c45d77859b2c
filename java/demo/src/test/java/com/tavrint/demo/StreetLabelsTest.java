package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.core.util.index.grid.AvoidContainer;
import java.util.List;
import org.junit.jupiter.api.Test;

class StreetLabelsTest {
    @Test
    void piecesOfAStreetJoinWhateverTheirDirection() {
        double[] a = {0, 0, 10, 0};
        double[] b = {20, 0, 10, 0}; // runs backwards into a's end
        double[] c = {20, 0, 20, 10};
        double[] apart = {100, 100, 110, 100};
        List<double[]> chains = StreetLabels.chains(List.of(a, b, c, apart));
        assertEquals(2, chains.size());
        assertEquals(30, StreetLabels.length(chains.get(0)), 1e-9);
        double[] joined = chains.get(0);
        assertEquals(8, joined.length, "four points, the shared ones written once");
        assertArrayEquals(apart, chains.get(1));
    }

    @Test
    void subPathCutsAtArcLengthsAndKeepsTheVerticesBetween() {
        double[] l = {0, 0, 10, 0, 10, 10};
        assertArrayEquals(new double[] {5, 0, 10, 0, 10, 3}, StreetLabels.subPath(l, 5, 13), 1e-9);
        assertArrayEquals(new double[] {2, 0, 8, 0}, StreetLabels.subPath(l, 2, 8), 1e-9);
        assertArrayEquals(new double[] {0, 0, 20, 0},
                StreetLabels.upright(new double[] {0, 0, 20, 0}));
        assertArrayEquals(new double[] {0, 0, 20, 0},
                StreetLabels.upright(new double[] {20, 0, 0, 0}), "text runs left to right");
    }

    @Test
    void onlyGentlyBentStretchesAreReadable() {
        assertTrue(StreetLabels.readable(new double[] {0, 0, 10, 0, 20, 3, 30, 8}));
        assertFalse(StreetLabels.readable(new double[] {0, 0, 10, 0, 10, 10}), "a right angle");
        assertFalse(StreetLabels.readable(
                new double[] {0, 0, 10, 0, 19, 4, 26, 11, 30, 20}), "a bend of 25 degrees thrice");
    }

    @Test
    void slotsCoverTheChainFromTheirMiddlesOutwards() {
        List<double[]> slots = StreetLabels.slots(300, 50, 100, 10);
        assertEquals(2, slots.size(), "300 px hold two names 100 px apart");
        double[] first = slots.get(0);
        assertEquals(50, first[0], 1e-9, "the first try is the middle of the slot");
        assertEquals(60, first[1], 1e-9);
        assertEquals(40, first[2], 1e-9);
        for (double s : first) assertTrue(s >= 0 && s + 50 <= 150 + 1e-9);
        assertTrue(StreetLabels.slots(40, 50, 100, 10).isEmpty(), "too short for the name");
    }

    // Two names along streets that turn a corner, nested one inside the other: their bounding
    // boxes overlap, their letters do not. A third name crosses the first.
    @Test
    void curvedFootprintsCollideOnlyWhereTheLettersWould() {
        int[] outer = StreetLabels.footprint(new double[] {50, 50, 250, 50, 250, 250});
        int[] inner = StreetLabels.footprint(new double[] {50, 90, 210, 90, 210, 250});
        int[] crossing = StreetLabels.footprint(new double[] {150, 10, 150, 120});
        try (AvoidContainer c = new AvoidContainer()) {
            c.setDeviceRect(0, 0, 400, 400);
            assertTrue(c.newObject().addLine(outer, 7).add());
            assertTrue(c.newObject().addLine(inner, 7).add(),
                    "nested bends: the boxes overlap, the bands of letters do not");
            assertFalse(c.newObject().addLine(crossing, 7).add(), "a crossing name is refused");
        }
        try (AvoidContainer c = new AvoidContainer()) {
            c.setDeviceRect(0, 0, 400, 400);
            int[] box = StreetsDemo.Pass.bounds(outer, 7);
            assertTrue(c.newObject().addRect(box[0], box[1], box[2], box[3]).add());
            assertFalse(c.newObject().addLine(inner, 7).add(),
                    "with the outer name as its bounding box the inner one is refused");
        }
    }
}
