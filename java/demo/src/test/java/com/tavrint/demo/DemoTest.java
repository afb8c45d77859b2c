package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.List;
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
        "Demo        | --coast maybe            | 2 | demo: --coast takes obstacle or drawn",
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
        assertEquals(code, p.waitFor(), err);
        assertTrue(out.isEmpty() && err.endsWith("\n") && err.indexOf('\n') == err.length() - 1
                        && err.contains(says), err);
    }

    @Test
    void europeHasTheLargestCitiesLabelledAndNoLabelsOverlap(@TempDir Path dir) throws Exception {
        Demo.main(new String[] {"--data", DATA.toString(), "--out", dir + "/map.png"});
        List<String[]> placed = new ArrayList<>();
        List<String> list = Files.readAllLines(dir.resolve("map-labels.tsv"));
        for (String line : list.subList(1, list.size())) {
            String[] f = line.split("\t", -1); // rank name country population lon lat placed ...
            if (f[6].equals("true")) placed.add(f);
        }
        String[] owner = new String[2000 * 1400];
        for (String[] f : placed) { // left top right bottom in columns 9 to 12
            int[] box = Arrays.stream(f, 9, 13).mapToInt(Integer::parseInt).toArray();
            claim(owner, 2000, 1400, f[0] + " " + f[1], box);
        }
        // The 40 most populous cities of the data on the canvas: each is labelled, or stands
        // within a few kilometres of a larger city that is (an old town beside its new one).
        Projection canvas = new Projection(2000, 1400, -11, 34.5, 41, 61.5);
        List<City> largest = GeoData.readCities(DATA.resolve("cities.tsv")).stream()
                .filter(c -> canvas.isOnCanvas(c.lon(), c.lat()))
                .sorted(Comparator.comparingLong(City::population).reversed()).limit(40).toList();
        for (City c : largest) {
            assertTrue(placed.stream().anyMatch(f -> Long.parseLong(f[3]) >= c.population()
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
        int w = frame.width(), h = frame.height();
        String[] owner = new String[w * h];
        for (int[] b : pass.reserved) claim(owner, w, h, "panel " + b[0], b);
        for (int i = 0; i < pass.pois.size(); i++) {
            StreetsDemo.PoiLabel p = pass.pois.get(i);
            int k = pass.poiChosen.get(i);
            if (k < 0) continue;
            claim(owner, w, h, "icon of " + p.poi().name(),
                    new int[] {p.px() - 1, p.py() - 1, p.px() + 1, p.py() + 1});
            claim(owner, w, h, p.poi().name(), LabelPass.labelBoxOf(p.candidates(), k));
        }
        // A name covers its line stroked by half its text height, 6 cells or more: the cells of
        // the points within 3 of the line, short of its ends, are surely covered.
        for (StreetsDemo.StreetName s : pass.names) {
            int[] line = StreetLabels.footprint(s.path());
            for (int i = 2; i < line.length; i += 2) {
                double x0 = line[i - 2], y0 = line[i - 1], dx = line[i] - x0, dy = line[i + 1] - y0;
                double len = Math.hypot(dx, dy);
                for (double t = 1; t <= len - 1; t += 0.5) {
                    for (double o = -3; o <= 3; o += 0.5) {
                        int x = (int) Math.floor(x0 + (t * dx - o * dy) / len);
                        int y = (int) Math.floor(y0 + (t * dy + o * dx) / len);
                        claim(owner, w, h, s.name() + " " + s.start(), new int[] {x, y, x, y});
                    }
                }
            }
        }
        assertTrue(pass.names.size() * 2 > pass.chainCount, "most streets are named");
        assertTrue(pass.placedPois() > 0 && pass.namesOnlyCellsAllow() > 0,
                "names stand where their bounding boxes overlap others");
    }

    // Claims the cells of a box, left, top, right, bottom, on a canvas: each for one owner.
    private static void claim(String[] owner, int width, int height, String who, int[] b) {
        for (int x = Math.max(0, b[0]); x <= Math.min(width - 1, b[2]); x++) {
            for (int y = Math.max(0, b[1]); y <= Math.min(height - 1, b[3]); y++) {
                String had = owner[y * width + x];
                assertTrue(had == null || had.equals(who), who + " over " + had + " at " + x);
                owner[y * width + x] = who;
            }
        }
    }
}
