package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import java.awt.image.BufferedImage;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.List;
import java.util.concurrent.TimeUnit;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

/** The demos as a user runs them: refused options, and the maps they draw from the real data. */
class DemoTest {
    // The tests run in java/demo; the data is the repository's.
    private static final Path DATA = Path.of("..", "..", "data");

    @ParameterizedTest(name = "{0} {1}")
    @CsvSource(delimiter = '|', value = {
        "Demo        | --width 0                | 2 | demo: --width out of range",
        "Demo        | --window 3,2,1,4         | 2 | demo: --window needs W < E",
        "Demo        | --coast maybe            | 2 | demo: --coast takes obstacle or drawn",
        "Demo        | --cities                 | 2 | demo: option --cities needs a value",
        "Demo        | --colour red             | 2 | demo: unknown option --colour",
        "Demo        | --data no-such-folder    | 1 | pass --data DIR",
        "StreetsDemo | --scale NaN              | 2 | demo-streets: --scale takes 0.2 to 5",
        "StreetsDemo | --data no-such-folder    | 1 | pass --data DIR"})
    void badOptionsAndMissingDataEndWithOneLineAndAnExitCode(String demo, String args, int code,
            String says) throws Exception {
        List<String> command = new ArrayList<>(List.of(
                Path.of(System.getProperty("java.home"), "bin", "java").toString(), "-cp",
                System.getProperty("java.class.path"), "com.tavrint.demo." + demo));
        command.addAll(List.of(args.split(" ")));
        Process p = new ProcessBuilder(command).start();
        String out = new String(p.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        String err = new String(p.getErrorStream().readAllBytes(), StandardCharsets.UTF_8);
        assertTrue(p.waitFor(60, TimeUnit.SECONDS));
        assertEquals(code, p.exitValue(), err);
        assertTrue(out.isEmpty() && err.endsWith("\n") && err.indexOf('\n') == err.length() - 1
                        && err.contains(says), err);
    }

    @Test
    void europeHasTheLargestCitiesLabelledAndNoLabelsOverlap(@TempDir Path dir) throws Exception {
        Demo.main(new String[] {"--data", DATA.toString(), "--out", dir.resolve("map.png").toString()});
        BufferedImage picture = ImageIO.read(dir.resolve("map.png").toFile());
        assertEquals(List.of(2000, 1400), List.of(picture.getWidth(), picture.getHeight()));
        List<String[]> placed = new ArrayList<>();
        List<String> list = Files.readAllLines(dir.resolve("map-labels.tsv"));
        for (String line : list.subList(1, list.size())) {
            String[] f = line.split("\t", -1); // rank name country population lon lat placed ...
            if (f[6].equals("true")) placed.add(f);
        }
        for (int i = 0; i < placed.size(); i++) {
            int[] a = box(placed.get(i));
            assertTrue(a[0] >= 0 && a[1] >= 0 && a[2] < 2000 && a[3] < 1400, placed.get(i)[1]);
            for (int j = 0; j < i; j++) {
                int[] b = box(placed.get(j));
                assertFalse(a[0] <= b[2] && b[0] <= a[2] && a[1] <= b[3] && b[1] <= a[3],
                        placed.get(i)[1] + " over " + placed.get(j)[1]);
            }
        }
        // The 40 most populous cities of the data on the canvas: each is labelled, or stands
        // within a few kilometres of a larger city that is (a new town beside its old one).
        Projection canvas = new Projection(2000, 1400, -11, 34.5, 41, 61.5);
        List<City> largest = GeoData.readCities(DATA.resolve("cities.tsv")).stream()
                .filter(c -> canvas.isOnCanvas(c.lon(), c.lat()))
                .sorted(Comparator.comparingLong(City::population).reversed()).limit(40).toList();
        for (City c : largest) {
            assertTrue(placed.stream().anyMatch(f -> f[1].equals(c.name())
                    && Long.parseLong(f[3]) == c.population()) || placed.stream().anyMatch(f -> Long.parseLong(f[3]) > c.population()
                    && Math.hypot(Double.parseDouble(f[4]) - c.lon(),
                               Double.parseDouble(f[5]) - c.lat()) < 0.05), c.name());
        }
    }

    @Test
    void helsinkiNamesIconsAndPanelsStandClearOfEachOther() throws Exception {
        StreetsDemo.Frame frame = StreetsDemo.Frame.of(1.25);
        StreetsDemo.Pass pass = new StreetsDemo.Pass(frame, 260);
        pass.run(StreetData.read(DATA.resolve("helsinki")));
        // Each object claims cells that it surely covers; no cell may be claimed twice.
        String[] owner = new String[frame.width() * frame.height()];
        for (int[] b : pass.reserved) claim(owner, frame, "panel " + b[0], b);
        for (int i = 0; i < pass.pois.size(); i++) {
            StreetsDemo.PoiLabel p = pass.pois.get(i);
            int k = pass.poiChosen.get(i);
            if (k < 0) continue;
            claim(owner, frame, "icon of " + p.poi().name(),
                    new int[] {p.px() - 1, p.py() - 1, p.px() + 1, p.py() + 1});
            claim(owner, frame, p.poi().name(), LabelPass.labelBoxOf(p.candidates(), k));
        }
        // A name covers its line stroked by half its text height, 6 cells or more: a band of 3
        // cells to each side of the line, short of its ends, is surely covered.
        for (StreetsDemo.StreetName s : pass.names) {
            int[] line = StreetLabels.footprint(s.path());
            for (int i = 2; i < line.length; i += 2) {
                double x0 = line[i - 2], y0 = line[i - 1], dx = line[i] - x0, dy = line[i + 1] - y0;
                double len = Math.hypot(dx, dy);
                for (int x = (int) Math.min(x0, x0 + dx) - 4; x <= Math.max(x0, x0 + dx) + 4; x++) {
                    for (int y = (int) Math.min(y0, y0 + dy) - 4; y <= Math.max(y0, y0 + dy) + 4; y++) {
                        double t = ((x + 0.5 - x0) * dx + (y + 0.5 - y0) * dy) / len;
                        double off = Math.abs((x + 0.5 - x0) * dy - (y + 0.5 - y0) * dx) / len;
                        if (t >= 1 && t <= len - 1 && off <= 3) {
                            claim(owner, frame, s.name() + " at " + s.start(), new int[] {x, y, x, y});
                        }
                    }
                }
            }
        }
        assertTrue(pass.names.size() * 2 > pass.chainCount, "most streets are named");
        assertTrue(pass.placedPois() > 0 && pass.namesOnlyCellsAllow() > 0,
                "names stand where their bounding boxes overlap others");
    }

    private static void claim(String[] owner, StreetsDemo.Frame f, String who, int[] b) {
        for (int x = Math.max(0, b[0]); x <= Math.min(f.width() - 1, b[2]); x++) {
            for (int y = Math.max(0, b[1]); y <= Math.min(f.height() - 1, b[3]); y++) {
                String had = owner[y * f.width() + x];
                assertTrue(had == null || had.equals(who), who + " over " + had + " at " + x + "," + y);
                owner[y * f.width() + x] = who;
            }
        }
    }

    private static int[] box(String[] f) {
        return new int[] {Integer.parseInt(f[9]), Integer.parseInt(f[10]),
            Integer.parseInt(f[11]), Integer.parseInt(f[12])};
    }
}
