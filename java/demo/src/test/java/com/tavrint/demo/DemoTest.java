package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.*;

import com.tavrint.demo.GeoData.City;
import java.io.ByteArrayOutputStream;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.Set;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** The world map demo as a user runs it, on the real data of the repository. */
class DemoTest {
    // The tests run in java/demo; the data is the repository's.
    private static final Path DATA = Path.of("..", "..", "data");

    @Test
    void europeHasTheLargestCitiesLabelledAndNoLabelsOverlap(@TempDir Path dir) throws Exception {
        PrintStream stdout = System.out;
        ByteArrayOutputStream printed = new ByteArrayOutputStream();
        System.setOut(new PrintStream(printed, true, StandardCharsets.UTF_8));
        try {
            Demo.main(new String[] {"--data", DATA.toString(), "--out", dir + "/map.png",
                "--explain", "Nicosia"});
        } finally {
            System.setOut(stdout);
        }
        assertTrue(printed.toString(StandardCharsets.UTF_8)
                .contains("Nicosia (CY), population 200,452, PPLC (capital)\n"), "explained");
        // rank name country population lon lat placed ...; left top right bottom in columns 9-12,
        // feature and blockers in 13 and 14
        List<String[]> rows = Files.readAllLines(dir.resolve("map-labels.tsv")).stream().skip(1)
                .map(l -> l.split("\t", -1)).toList();
        List<String[]> placed = rows.stream().filter(f -> f[6].equals("true")).toList();
        // Whatever blocked a city left out is the panel, a border, no room on the canvas, or the
        // label or dot of a city placed before it.
        Map<String, Integer> placedRank = new HashMap<>();
        for (String[] f : placed) placedRank.putIfAbsent(f[1], Integer.parseInt(f[0]));
        for (String[] f : rows) {
            if (f[6].equals("true")) continue;
            assertFalse(f[14].isEmpty(), f[1] + " has no blockers");
            for (String entry : f[14].split(";")) {
                String what = entry.substring(entry.indexOf('=') + 1).replace(" (dot)", "");
                if (Set.of("panel", "border", "off canvas").contains(what)) continue;
                assertTrue(placedRank.getOrDefault(what, Integer.MAX_VALUE)
                        < Integer.parseInt(f[0]), f[1] + " blocked by " + what);
            }
        }
        // Each placed label claims the cells of its box: no cell may be claimed twice.
        String[] owner = new String[2000 * 1400];
        for (String[] f : placed) {
            int[] b = Arrays.stream(f, 9, 13).mapToInt(Integer::parseInt).toArray();
            for (int x = Math.max(0, b[0]); x <= Math.min(1999, b[2]); x++) {
                for (int y = Math.max(0, b[1]); y <= Math.min(1399, b[3]); y++) {
                    assertTrue(owner[y * 2000 + x] == null, f[1] + " over " + owner[y * 2000 + x]);
                    owner[y * 2000 + x] = f[1];
                }
            }
        }
        // The 40 most populous cities of the data on the canvas (sections of cities left out)
        // and every capital of 100,000 or more are labelled.
        Projection canvas = new Projection(2000, 1400, -11, 34.5, 41, 61.5);
        List<City> cities = GeoData.readCities(DATA.resolve("cities.tsv")).stream()
                .filter(c -> canvas.isOnCanvas(c.lon(), c.lat()) && !c.isSection()).toList();
        Stream.concat(cities.stream().limit(40),
                cities.stream().filter(c -> c.isCapital() && c.population() >= 100_000))
                .forEach(c -> assertTrue(placed.stream().anyMatch(f -> f[1].equals(c.name())
                        && f[2].equals(c.country())), c.name()));
    }
}
