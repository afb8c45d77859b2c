package com.tavrint.demo;

import com.tavrint.core.util.index.grid.AvoidContainer;
import com.tavrint.core.util.index.grid.AvoidObject;
import com.tavrint.core.util.index.grid.CAvoidContainerWrap;
import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.Random;

/**
 * Whole placement passes driven through Java, in objects per second, twice: through the raw
 * natives of {@link CAvoidContainerWrap} and through the handle-free layer ({@link
 * AvoidContainer}, {@link AvoidObject}). A pass forces its obstacles (stroked lines), then per
 * label creates an object, sets its ID, adds the cells of its first candidate's rectangle, adds
 * the further candidates and adds it; then it reads both result lists with every object's ID and
 * offset, and resets the container. The time of a pass covers all of that: footprints, placement
 * and reading the results. The two ways run in alternation on one container each, so that both
 * see the same load of the machine, and must give the same answers.
 *
 * <p>Three workloads: the labels of the native suite's uniform scene at 10,000 and 1,000,000
 * labels (random widths spread over a square canvas that keeps their density constant, from a
 * fixed seed so that runs compare; up to four candidates around each point, those that fit the
 * canvas), and the world map: every city of the data as a label with its candidates around the
 * city's point (up to eight, those that fit the canvas), with the borders and the coastline as
 * forced lines, on an equirectangular canvas of 8192 x 4096 pixels.
 *
 * <p>Usage: PassBenchmark [JSON output file [data folder]]; the data folder defaults to
 * {@code data}.
 */
public final class PassBenchmark {
    private static final long SEED = 20240601L;
    private static final double CELLS_PER_LABEL = 2400.0;
    private static final int LABEL_HEIGHT = 13;
    private static final int CLEARANCE = 4;
    private static final int[] SIZES = {10_000, 1_000_000};
    private static final int WORLD_WIDTH = 8192;
    private static final int WORLD_HEIGHT = 4096;
    /** Estimated pixels per character of a city's name, and the label's margin. */
    private static final int CHAR_WIDTH = 7;
    private static final int LABEL_MARGIN = 2;
    /** Each way runs passes until this much time has gone, and at least three. */
    private static final double MIN_SECONDS = 2.0;

    /**
     * One pass's input in canvas pixels. A forced line is interleaved x, y values stroked with
     * LINE_HALF_WIDTH; a label is the four corners of its ring (eight values) followed by the x,
     * y offsets of its further candidates.
     */
    private record Workload(String name, int width, int height, List<int[]> forcedLines,
            List<int[]> labels) {
        int objects() {
            return forcedLines.size() + labels.size();
        }
    }

    private record Row(String name, int objects, int placedLabels, int passes, double bestSeconds,
            double medianSeconds, int layerPasses, double layerMedianSeconds) {
        double objectsPerSecond() {
            return objects / medianSeconds;
        }

        double layerObjectsPerSecond() {
            return objects / layerMedianSeconds;
        }
    }

    /** One way of running a pass: returns its outcome (see {@link #rawPass}). */
    private interface Pass {
        long run();
    }

    private PassBenchmark() {}

    public static void main(String[] args) throws IOException {
        Path dataDir = Path.of(args.length > 1 ? args[1] : "data");
        List<Row> rows = new ArrayList<>();
        for (int n : SIZES) rows.add(measure(uniformLabels(n, new Random(SEED))));
        rows.add(measure(worldMap(dataDir)));
        System.out.printf("%-28s %8s %8s %7s %12s %14s %14s %14s %11s%n", "benchmark", "objects",
                "placed", "passes", "median ms", "raw objects/s", "layer passes",
                "layer objects/s", "layer/raw");
        for (Row r : rows) {
            System.out.printf(Locale.ROOT, "%-28s %8d %8d %7d %12.2f %14.0f %14d %14.0f %11.3f%n",
                    r.name(), r.objects(), r.placedLabels(), r.passes(), r.medianSeconds() * 1e3,
                    r.objectsPerSecond(), r.layerPasses(), r.layerObjectsPerSecond(),
                    r.layerMedianSeconds() / r.medianSeconds());
        }
        if (args.length > 0) {
            Path out = Path.of(args[0]).toAbsolutePath();
            Files.createDirectories(out.getParent());
            Files.writeString(out, toJson(rows));
            System.out.println("wrote " + args[0]);
        }
    }

    private static Row measure(Workload w) {
        long c = CAvoidContainerWrap.CreateAvoidContainer();
        try (AvoidContainer layer = new AvoidContainer()) {
            CAvoidContainerWrap.AvoidContainerExtent(c, new int[] {0, 0, w.width(), w.height()},
                    new double[] {0, 0, w.width(), w.height()});
            layer.setCanvasSize(w.width(), w.height());
            Pass raw = () -> rawPass(c, w);
            Pass idiomatic = () -> layerPass(layer, w);
            long outcome = raw.run(); // warm-up: JIT, object pool, row storage
            if (idiomatic.run() != outcome) {
                throw new IllegalStateException(w.name() + ": the layer's answers differ");
            }
            List<Double> rawSeconds = new ArrayList<>();
            List<Double> layerSeconds = new ArrayList<>();
            double total = 0;
            while (rawSeconds.size() < 3 || total < MIN_SECONDS) {
                total += time(raw, outcome, rawSeconds);
                time(idiomatic, outcome, layerSeconds);
            }
            double[] sorted = rawSeconds.stream().mapToDouble(Double::doubleValue).sorted().toArray();
            double[] layerSorted =
                    layerSeconds.stream().mapToDouble(Double::doubleValue).sorted().toArray();
            int placedLabels = (int) (outcome >>> 32) - w.forcedLines().size();
            return new Row(w.name(), w.objects(), placedLabels, sorted.length, sorted[0],
                    sorted[sorted.length / 2], layerSorted.length,
                    layerSorted[layerSorted.length / 2]);
        } finally {
            CAvoidContainerWrap.DestroyAvoidContainer(c);
        }
    }

    private static double time(Pass pass, long outcome, List<Double> seconds) {
        long t0 = System.nanoTime();
        long again = pass.run();
        double s = (System.nanoTime() - t0) / 1e9;
        if (again != outcome) throw new IllegalStateException("passes disagree");
        seconds.add(s);
        return s;
    }

    // One pass; returns its outcome: the number of placed objects in the high half, a checksum of
    // the objects' IDs and offsets in the low half. Every pass of the same workload has the same.
    private static long rawPass(long c, Workload w) {
        List<int[]> forced = w.forcedLines();
        for (int i = 0; i < forced.size(); i++) {
            long obj = CAvoidContainerWrap.CreateAvoidObject(c);
            CAvoidContainerWrap.AvoidObject_SetID(obj, -1 - i);
            CAvoidContainerWrap.AvoidObject_AddLines(obj, forced.get(i), Scene.LINE_HALF_WIDTH);
            CAvoidContainerWrap.AddAvoidObjectForce(c, obj);
        }
        List<int[]> labels = w.labels();
        int[] ring = new int[8];
        for (int i = 0; i < labels.size(); i++) {
            int[] l = labels.get(i);
            long obj = CAvoidContainerWrap.CreateAvoidObject(c);
            CAvoidContainerWrap.AvoidObject_SetID(obj, i);
            System.arraycopy(l, 0, ring, 0, 8);
            CAvoidContainerWrap.AvoidObject_AddRing(obj, ring);
            for (int k = 8; k + 1 < l.length; k += 2) {
                CAvoidContainerWrap.AvoidObject_AddOffset(obj, l[k], l[k + 1]);
            }
            CAvoidContainerWrap.AddAvoidObject(c, obj);
        }
        long sum = 0;
        long[] placed = CAvoidContainerWrap.AllPlacedObject(c);
        long[] unplaced = CAvoidContainerWrap.AllUnPlacedObject(c);
        for (long[] list : new long[][] {placed, unplaced}) {
            if (list == null) continue;
            for (long obj : list) {
                sum += CAvoidContainerWrap.AvoidObject_GetID(obj);
                sum += CAvoidContainerWrap.AvoidObject_Offset(obj)[0];
            }
        }
        CAvoidContainerWrap.ResetAvoidContainer(c);
        long count = placed == null ? 0 : placed.length;
        return (count << 32) | (sum & 0xffffffffL);
    }

    // The same pass through the handle-free layer, with the same outcome.
    private static long layerPass(AvoidContainer c, Workload w) {
        List<int[]> forced = w.forcedLines();
        for (int i = 0; i < forced.size(); i++) {
            c.newObject().setId(-1 - i).addLine(forced.get(i), Scene.LINE_HALF_WIDTH).addForced();
        }
        List<int[]> labels = w.labels();
        for (int i = 0; i < labels.size(); i++) {
            int[] l = labels.get(i);
            // The ring on the outer corners of the cells l[0]..l[4] - 1 by l[1]..l[5] - 1.
            AvoidObject obj = c.newObject().setId(i).addRect(l[0], l[1], l[4] - 1, l[5] - 1);
            for (int k = 8; k + 1 < l.length; k += 2) obj.addOffset(l[k], l[k + 1]);
            obj.add();
        }
        long sum = 0;
        List<AvoidObject> placed = c.placed();
        for (List<AvoidObject> list : List.of(placed, c.unplaced())) {
            for (AvoidObject obj : list) sum += obj.id() + obj.offsetX();
        }
        c.reset();
        long count = placed.size();
        return (count << 32) | (sum & 0xffffffffL);
    }

    private static int canvasSide(int n) {
        return (int) Math.ceil(Math.sqrt(n * CELLS_PER_LABEL));
    }

    // Per label the candidates right of its point, left, above and below, those that fit the
    // canvas: the first one's box, then the offsets of the others from it.
    static Workload uniformLabels(int n, Random rng) {
        int side = canvasSide(n);
        List<int[]> labels = new ArrayList<>(n);
        for (int i = 0; i < n; i++) {
            int px = rng.nextInt(side);
            int py = rng.nextInt(side);
            int w = 24 + rng.nextInt(73);
            int[][] corners = {{px + CLEARANCE, py - LABEL_HEIGHT / 2},
                {px - CLEARANCE - w, py - LABEL_HEIGHT / 2},
                {px - w / 2, py - CLEARANCE - LABEL_HEIGHT}, {px - w / 2 + 1, py + CLEARANCE}};
            int[] l = null;
            int size = 0;
            for (int[] at : corners) {
                if (at[0] < 0 || at[0] + w > side || at[1] < 0 || at[1] + LABEL_HEIGHT > side) {
                    continue;
                }
                if (l == null) {
                    l = Arrays.copyOf(Footprints.rectangleRing(at[0], at[1], at[0] + w - 1,
                            at[1] + LABEL_HEIGHT - 1), 14);
                    size = 8;
                } else {
                    l[size++] = at[0] - l[0];
                    l[size++] = at[1] - l[1];
                }
            }
            if (l != null) labels.add(Arrays.copyOf(l, size));
        }
        return new Workload("java_pass_uniform/" + n, side, side, List.of(), labels);
    }

    // Every city, most populous first, labelled around its point; cities without a candidate
    // that fits the canvas are left out. Borders, then the coastline, as forced pieces.
    static Workload worldMap(Path dataDir) throws IOException {
        List<City> cities = GeoData.readCities(dataDir.resolve("cities.tsv"));
        Projection p = new Projection(WORLD_WIDTH, WORLD_HEIGHT, -180, -90, 180, 90);
        List<int[]> labels = new ArrayList<>(cities.size());
        for (City city : cities) {
            int width = CHAR_WIDTH * city.name().codePointCount(0, city.name().length())
                    + LABEL_MARGIN;
            Candidates cand = Candidates.around(p.x(city.lon()), p.y(city.lat()), CLEARANCE,
                    width, LABEL_HEIGHT, WORLD_WIDTH, WORLD_HEIGHT);
            if (cand.isEmpty()) continue;
            int l = cand.left(0);
            int t = cand.top(0);
            int[] ring = Footprints.rectangleRing(l, t, l + width - 1, t + LABEL_HEIGHT - 1);
            int[] label = Arrays.copyOf(ring, 8 + 2 * (cand.size() - 1));
            for (int k = 1; k < cand.size(); k++) {
                label[8 + 2 * (k - 1)] = cand.dx(k);
                label[9 + 2 * (k - 1)] = cand.dy(k);
            }
            labels.add(label);
        }
        List<int[]> forced = new ArrayList<>();
        for (String file : new String[] {"borders.tsv", "coastline.tsv"}) {
            for (Polyline line : GeoData.readPolylines(dataDir.resolve(file))) {
                int[] xy = p.toPixels(line.lonLat());
                forced.addAll(Footprints.splitPolyline(xy, Scene.PIECE_SPAN));
            }
        }
        return new Workload("java_pass_world/" + cities.size(), WORLD_WIDTH, WORLD_HEIGHT, forced,
                labels);
    }

    private static String toJson(List<Row> rows) {
        StringBuilder sb = new StringBuilder("{\n  \"benchmarks\": [\n");
        for (int i = 0; i < rows.size(); i++) {
            Row r = rows.get(i);
            sb.append(String.format(Locale.ROOT,
                    "    {\"name\": \"%s\", \"objects\": %d, \"placed\": %d, \"passes\": %d, "
                            + "\"best_seconds\": %.6f, \"median_seconds\": %.6f, "
                            + "\"objects_per_second\": %.1f, \"layer_passes\": %d, "
                            + "\"layer_median_seconds\": %.6f}%s%n",
                    r.name(), r.objects(), r.placedLabels(), r.passes(), r.bestSeconds(),
                    r.medianSeconds(), r.objectsPerSecond(), r.layerPasses(),
                    r.layerMedianSeconds(), i + 1 < rows.size() ? "," : ""));
        }
        return sb.append("  ]\n}\n").toString();
    }
}
