package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.Comparator;
import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** The world map demo as a user runs it, on the real data of the repository. */
class DemoTest {
    // The tests run in java/demo; the data is the repository's.
    private static final Path DATA = Path.of("..", "..", "data");

    @Test
    void europeHasTheLargestCitiesLabelledAndNoLabelsOverlap(@TempDir Path dir) throws Exception {
        Demo.main(new String[] {"--data", DATA.toString(), "--out", dir + "/map.png"});
        // rank name country population lon lat placed ...; left top right bottom in columns 9-12
        List<String[]> placed = Files.readAllLines(dir.resolve("map-labels.tsv")).stream().skip(1)
                .map(l -> l.split("\t", -1)).filter(f -> f[6].equals("true")).toList();
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
        // The 40 most populous cities of the data on the canvas: each is labelled, or stands
        // within a few kilometres of a larger city that is (an old town beside its new one).
        Projection canvas = new Projection(2000, 1400, -11, 34.5, 41, 61.5);
        GeoData.readCities(DATA.resolve("cities.tsv")).stream()
                .filter(c -> canvas.isOnCanvas(c.lon(), c.lat()))
                .sorted(Comparator.comparingLong(City::population).reversed()).limit(40)
                .forEach(c -> assertTrue(placed.stream().anyMatch(f -> Long.parseLong(f[3])
                        >= c.population() && Math.hypot(Double.parseDouble(f[4]) - c.lon(),
                                Double.parseDouble(f[5]) - c.lat()) < 0.05), c.name()));
    }
}
