package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.file.Path;
import org.junit.jupiter.api.Test;

class OptionsTest {
    @Test
    void everyOptionIsRead() {
        Options o = Options.parse("--width", "800", "--height", "600", "--window", "1,2,3,4",
                "--cities", "50", "--spacing", "7", "--out", "x/y.png", "--show-rejected",
                "--data", "d", "--coast", "obstacle");
        assertEquals(800, o.width());
        assertEquals(600, o.height());
        assertArrayEquals(new double[] {1, 2, 3, 4}, o.window());
        assertEquals(50, o.cities());
        assertEquals(7, o.spacing());
        assertEquals(Path.of("x/y.png"), o.out());
        assertTrue(o.showRejected());
        assertEquals(Path.of("d"), o.dataDir());
        assertTrue(o.coastAsObstacle());
    }

    @Test
    void defaultsDrawEuropeWithTheCoastDrawnOnly() {
        Options o = Options.parse();
        assertEquals(2000, o.width());
        assertEquals(1400, o.height());
        assertFalse(o.coastAsObstacle());
        assertFalse(o.showRejected());
        assertEquals(Path.of("out", "demo.png"), o.out());
    }

    @Test
    void badValuesAreRefusedWithTheOptionNamed() {
        String[][] bad = {
            {"--width"}, {"--width", "0"}, {"--width", "ten"}, {"--height", "10001"},
            {"--window", "1,2,3"}, {"--window", "3,2,1,4"}, {"--window", "0,0,200,10"},
            {"--coast", "maybe"}, {"--colour", "red"}, {"--cities", "-1"}, {"--spacing", "x"},
        };
        for (String[] args : bad) {
            IllegalArgumentException e =
                    assertThrows(IllegalArgumentException.class, () -> Options.parse(args));
            assertTrue(e.getMessage().contains(args[0]), e.getMessage());
        }
    }
}
