package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;

import org.junit.jupiter.api.Test;

class StreetLabelsTest {
    // Pixels run downwards. Each row: a path as drawn, and its first point once upright.
    @Test
    void namesReadLeftToRightOrBottomToTop() {
        double[][][] cases = {
            {{0, 0, 10, 3}, {0, 0}}, // rightwards and a little down: kept
            {{10, 3, 0, 0}, {0, 0}}, // leftwards: turned
            {{0, 100, 3, 0}, {0, 100}}, // up, leaning right: bottom to top
            {{3, 0, 0, 100}, {0, 100}}, // down, leaning left: turned to read upwards
            {{0, 0, 3, 100}, {3, 100}}, // down, leaning right: turned, though it runs rightwards
            {{0, 0, 0, 100}, {0, 100}}, // straight down: turned
            {{0, 0, 40, 100}, {0, 0}}, // steep but beyond the near-vertical band: left to right
            {{40, 100, 0, 0}, {0, 0}},
        };
        for (double[][] c : cases) {
            double[] up = StreetLabels.upright(c[0]);
            assertArrayEquals(c[1], new double[] {up[0], up[1]}, java.util.Arrays.toString(c[0]));
        }
    }
}
