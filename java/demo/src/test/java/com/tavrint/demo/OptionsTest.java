package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.file.Path;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

class OptionsTest {
    @Test
    void everyOptionIsReadAndDefaultsDrawEuropeWithTheCoastDrawnOnly() {
        Options o = Options.parse("--width", "800", "--height", "600", "--window", "1,2,3,4",
                "--cities", "50", "--spacing", "7", "--out", "x/y.png", "--show-rejected",
                "--data", "d", "--coast", "obstacle");
        assertArrayEquals(new int[] {800, 600, 50, 7},
                new int[] {o.width(), o.height(), o.cities(), o.spacing()});
        assertArrayEquals(new double[] {1, 2, 3, 4}, o.window());
        assertEquals(Path.of("x/y.png"), o.out());
        assertEquals(Path.of("d"), o.dataDir());
        assertTrue(o.showRejected() && o.coastAsObstacle());
        Options d = Options.parse();
        assertArrayEquals(new int[] {2000, 1400}, new int[] {d.width(), d.height()});
        assertFalse(d.coastAsObstacle() || d.showRejected());
        assertEquals(Path.of("out", "demo.png"), d.out());
    }

    @ParameterizedTest
    @ValueSource(strings = {"--width", "--width 0", "--width ten", "--height 10001",
        "--window 1,2,3", "--window 3,2,1,4", "--window 0,0,200,10", "--coast maybe",
        "--colour red", "--cities -1", "--spacing x"})
    void badValuesAreRefusedWithTheOptionNamed(String line) {
        String[] args = line.split(" ");
        IllegalArgumentException e =
                assertThrows(IllegalArgumentException.class, () -> Options.parse(args));
        assertTrue(e.getMessage().contains(args[0]), e.getMessage());
    }

    @Test
    void unknownOptionsAreCalledUnknownEvenWithoutAValue() {
        for (String bogus : new String[] {"--bogus", "-x", "extra"}) {
            IllegalArgumentException e =
                    assertThrows(IllegalArgumentException.class, () -> Options.parse(bogus));
            assertEquals("unknown option " + bogus, e.getMessage());
        }
        assertEquals("option --out needs a value",
                assertThrows(IllegalArgumentException.class, () -> Options.parse("--out"))
                        .getMessage());
    }

    @Test
    void streetOptionsRefuseUnknownMissingAndOutOfRangeValues() {
        StreetsDemo.Options d = StreetsDemo.Options.parse();
        assertEquals(Path.of("data", "helsinki"), d.dataDir());
        assertEquals(2.5, StreetsDemo.Options.parse("--scale", "2.5").scale());
        for (String[] bad : new String[][] {{"--bogus"}, {"--scale"}, {"--scale", "0"},
                 {"--repeat", "-1"}, {"--scale", "NaN"}}) {
            IllegalArgumentException e = assertThrows(
                    IllegalArgumentException.class, () -> StreetsDemo.Options.parse(bad));
            assertTrue(e.getMessage().contains(bad[0]), e.getMessage());
        }
    }

    @Test
    void missingDataIsNamedInOneLine(@org.junit.jupiter.api.io.TempDir Path dir)
            throws java.io.IOException {
        java.io.IOException noDir = assertThrows(java.io.IOException.class,
                () -> DataFiles.require(dir.resolve("absent"), "cities.tsv"));
        assertTrue(DataFiles.describe(noDir).contains("data folder not found"));
        java.io.IOException noFile = assertThrows(java.io.IOException.class,
                () -> DataFiles.require(dir, "cities.tsv"));
        String line = DataFiles.describe(noFile);
        assertTrue(line.contains("cities.tsv") && line.contains("--data") && !line.contains("\n"),
                line);
        assertEquals(Path.of("out", "map-labels.tsv"),
                DataFiles.listBeside(Path.of("out", "map.png"), "-labels.tsv"));
    }
}
