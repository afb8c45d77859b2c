package com.tavrint.demo;

import com.tavrint.core.util.index.grid.CAvoidContainerWrap;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Random;

/**
 * Whole placement passes driven through the Java natives, in objects per second: per label
 * create an object, set its ID, rasterise its box as a ring, add three further candidates and add
 * it; then read both result lists with every object's ID and offset, and reset the container.
 *
 * <p>The labels are those of the native suite's uniform scene: random widths, spread over a
 * square canvas that keeps their density constant, generated from a fixed seed so that runs
 * compare. Usage: PassBenchmark [JSON output file].
 */
public final class PassBenchmark {
    private static final long SEED = 20240601L;
    private static final double CELLS_PER_LABEL = 2400.0;
    private static final int LABEL_HEIGHT = 13;
    private static final int CLEARANCE = 4;
    private static final int[] SIZES = {1000, 4000};
    /** Each size runs passes until this much time has gone, and at least three. */
    private static final double MIN_SECONDS = 2.0;

    private record Row(String name, int objects, int placed, int passes, double bestSeconds,
            double medianSeconds) {
        double objectsPerSecond() {
            return objects / medianSeconds;
        }
    }

    private PassBenchmark() {}

    public static void main(String[] args) throws IOException {
        List<Row> rows = new ArrayList<>();
        for (int n : SIZES) rows.add(measure(n));
        System.out.printf("%-28s %8s %8s %7s %12s %14s%n", "benchmark", "objects", "placed",
                "passes", "median ms", "objects/s");
        for (Row r : rows) {
            System.out.printf(Locale.ROOT, "%-28s %8d %8d %7d %12.2f %14.0f%n", r.name(),
                    r.objects(), r.placed(), r.passes(), r.medianSeconds() * 1e3,
                    r.objectsPerSecond());
        }
        if (args.length > 0) {
            Path out = Path.of(args[0]).toAbsolutePath();
            Files.createDirectories(out.getParent());
            Files.writeString(out, toJson(rows));
            System.out.println("wrote " + args[0]);
        }
    }

    private static Row measure(int n) {
        int[][] labels = uniformLabels(n, new Random(SEED));
        int side = canvasSide(n);
        long c = CAvoidContainerWrap.CreateAvoidContainer();
        try {
            CAvoidContainerWrap.AvoidContainerExtent(
                    c, new int[] {0, 0, side, side}, new double[] {0, 0, side, side});
            long outcome = runPass(c, labels);  // warm-up: JIT, object pool, row storage
            List<Double> seconds = new ArrayList<>();
            double total = 0;
            while (seconds.size() < 3 || total < MIN_SECONDS) {
                long t0 = System.nanoTime();
                long again = runPass(c, labels);
                double s = (System.nanoTime() - t0) / 1e9;
                if (again != outcome) throw new IllegalStateException("passes disagree");
                seconds.add(s);
                total += s;
            }
            double[] sorted = seconds.stream().mapToDouble(Double::doubleValue).sorted().toArray();
            return new Row("java_pass_uniform/" + n, n, (int) (outcome >>> 32), sorted.length,
                    sorted[0], sorted[sorted.length / 2]);
        } finally {
            CAvoidContainerWrap.DestroyAvoidContainer(c);
        }
    }

    // One pass; returns its outcome: the number of placed objects in the high half, a checksum of
    // the objects' IDs and offsets in the low half. Every pass of the same labels has the same.
    private static long runPass(long c, int[][] labels) {
        for (int i = 0; i < labels.length; i++) {
            int[] l = labels[i];
            long obj = CAvoidContainerWrap.CreateAvoidObject(c);
            CAvoidContainerWrap.AvoidObject_SetID(obj, i);
            CAvoidContainerWrap.AvoidObject_AddRing(
                    obj, Footprints.rectangleRing(l[0], l[1], l[0] + l[2] - 1, l[1] + l[3] - 1));
            for (int k = 4; k + 1 < l.length; k += 2) {
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

    private static int canvasSide(int n) {
        return (int) Math.ceil(Math.sqrt(n * CELLS_PER_LABEL));
    }

    // Per label: left, top, width, height of the box right of its point, then the offsets of
    // the left, above and below candidates.
    static int[][] uniformLabels(int n, Random rng) {
        int side = canvasSide(n);
        int[][] labels = new int[n][];
        for (int i = 0; i < n; i++) {
            int px = rng.nextInt(side);
            int py = rng.nextInt(side);
            int w = 24 + rng.nextInt(73);
            int left = px + CLEARANCE;
            int top = py - LABEL_HEIGHT / 2;
            int centred = px - w / 2 - left;
            labels[i] = new int[] {left, top, w, LABEL_HEIGHT, -w - 2 * CLEARANCE, 0, centred,
                py - CLEARANCE - LABEL_HEIGHT - top, centred + 1, py + CLEARANCE - top};
        }
        return labels;
    }

    private static String toJson(List<Row> rows) {
        StringBuilder sb = new StringBuilder("{\n  \"benchmarks\": [\n");
        for (int i = 0; i < rows.size(); i++) {
            Row r = rows.get(i);
            sb.append(String.format(Locale.ROOT,
                    "    {\"name\": \"%s\", \"objects\": %d, \"placed\": %d, \"passes\": %d, "
                            + "\"best_seconds\": %.6f, \"median_seconds\": %.6f, "
                            + "\"objects_per_second\": %.1f}%s%n",
                    r.name(), r.objects(), r.placed(), r.passes(), r.bestSeconds(),
                    r.medianSeconds(), r.objectsPerSecond(), i + 1 < rows.size() ? "," : ""));
        }
        return sb.append("  ]\n}\n").toString();
    }
}
