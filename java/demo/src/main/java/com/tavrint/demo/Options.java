package com.tavrint.demo;

import java.nio.file.Path;

/** Command-line options of the demo; every option has a default that makes a good picture. */
public record Options(int width, int height, double[] window, int cities, int spacing, Path out,
        boolean showRejected, Path dataDir, boolean coastAsObstacle) {
    public static final String USAGE = String.join("\n",
            "usage: Demo [options]",
            "  --width N               canvas width in pixels (2000)",
            "  --height N              canvas height in pixels (1400)",
            "  --window W,S,E,N        lon/lat window in degrees (-11,34.5,41,61.5: Europe)",
            "  --cities N              label the N most populous cities in the window (1500)",
            "  --spacing N             leave out cities within N pixels (more round big cities) of a larger one (12)",
            "  --out FILE              output picture (out/demo.png); the label list goes beside it",
            "  --show-rejected         draw the labels that found no place, faintly",
            "  --data DIR              folder of cities.tsv, borders.tsv, coastline.tsv (data)",
            "  --coast obstacle|drawn  whether labels must keep off the coastline (drawn)");

    /** Parses the arguments over the defaults; throws IllegalArgumentException with a reason. */
    public static Options parse(String... args) {
        int width = 2000;
        int height = 1400;
        double[] window = {-11, 34.5, 41, 61.5};
        int cities = 1500;
        int spacing = 12;
        Path out = Path.of("out", "demo.png");
        boolean showRejected = false;
        Path dataDir = Path.of("data");
        boolean coastAsObstacle = false;
        for (int i = 0; i < args.length; i++) {
            String a = args[i];
            if (a.equals("--show-rejected")) {
                showRejected = true;
                continue;
            }
            if (!VALUED.contains(a)) throw new IllegalArgumentException("unknown option " + a);
            if (i + 1 >= args.length) {
                throw new IllegalArgumentException("option " + a + " needs a value");
            }
            String v = args[++i];
            switch (a) {
                case "--width" -> width = positive(a, v, MAX_SIDE);
                case "--height" -> height = positive(a, v, MAX_SIDE);
                case "--cities" -> cities = positive(a, v, Integer.MAX_VALUE);
                case "--spacing" -> spacing = positive(a, v, MAX_SIDE);
                case "--out" -> out = Path.of(v);
                case "--data" -> dataDir = Path.of(v);
                case "--window" -> window = window(v);
                case "--coast" -> {
                    if (!v.equals("obstacle") && !v.equals("drawn")) {
                        throw new IllegalArgumentException("--coast takes obstacle or drawn");
                    }
                    coastAsObstacle = v.equals("obstacle");
                }
                default -> throw new IllegalArgumentException("unknown option: " + a);
            }
        }
        return new Options(width, height, window, cities, spacing, out, showRejected, dataDir,
                coastAsObstacle);
    }

    private static final java.util.Set<String> VALUED = java.util.Set.of("--width", "--height",
            "--cities", "--spacing", "--out", "--data", "--window", "--coast");

    // Bounds the canvas so that the picture stays within a few hundred megabytes of memory.
    private static final int MAX_SIDE = 10000;

    static int positive(String name, String v, int max) {
        int n;
        try {
            n = Integer.parseInt(v);
        } catch (NumberFormatException e) {
            throw new IllegalArgumentException(name + " takes a whole number, not " + v);
        }
        if (n <= 0 || n > max) throw new IllegalArgumentException(name + " out of range: " + v);
        return n;
    }

    static double[] window(String v) {
        String[] f = v.split(",");
        if (f.length != 4) throw new IllegalArgumentException("--window takes W,S,E,N");
        double[] w = new double[4];
        try {
            for (int i = 0; i < 4; i++) w[i] = Double.parseDouble(f[i].trim());
        } catch (NumberFormatException e) {
            throw new IllegalArgumentException("--window takes four numbers: " + v);
        }
        if (!(w[0] < w[2]) || !(w[1] < w[3]) || w[0] < -180 || w[2] > 180 || w[1] < -90
                || w[3] > 90) {
            throw new IllegalArgumentException("--window needs W < E and S < N within the globe");
        }
        return w;
    }
}
