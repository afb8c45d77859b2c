package com.tavrint.demo;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import com.tavrint.demo.Scene.Label;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import javax.imageio.ImageIO;

/**
 * Labels a real map through the placement library and writes it as a PNG picture: city names
 * that must not overlap each other, the city dots, the country borders or (by default) the
 * coastline. Beside the picture it writes the list of every label (name, population, placed or
 * not, chosen candidate) as tab-separated text. Run with --help for the options.
 */
public final class Demo {
    private Demo() {}

    /** How many of the most populous cities on the canvas the run reports on. */
    static final int LARGEST = 40;

    public static void main(String[] args) {
        System.setProperty("java.awt.headless", "true");
        Options o;
        try {
            if (args.length == 1 && (args[0].equals("--help") || args[0].equals("-h"))) {
                System.out.println(Options.USAGE);
                return;
            }
            o = Options.parse(args);
        } catch (IllegalArgumentException e) {
            System.err.println("demo: " + e.getMessage() + " (--help lists the options)");
            System.exit(2);
            return;
        }
        try {
            run(o);
        } catch (IOException e) {
            System.err.println("demo: " + DataFiles.describe(e));
            System.exit(1);
        }
    }

    private static void run(Options o) throws IOException {
        long t0 = System.nanoTime();
        List<City> cities = GeoData.readCities(DataFiles.require(o.dataDir(), "cities.tsv"));
        List<Polyline> borders =
                GeoData.readPolylines(DataFiles.require(o.dataDir(), "borders.tsv"));
        List<Polyline> coast =
                GeoData.readPolylines(DataFiles.require(o.dataDir(), "coastline.tsv"));
        long t1 = System.nanoTime();
        double[] w = o.window();
        Projection projection = new Projection(o.width(), o.height(), w[0], w[1], w[2], w[3]);
        Scene scene = Scene.build(projection, cities, borders, coast, o.cities(), o.spacing());
        long t2 = System.nanoTime();
        LabelPass.Result r = new LabelPass(scene, o.coastAsObstacle()).run();
        long t3 = System.nanoTime();
        BufferedImage img = MapPainter.paint(scene, r, o.showRejected());
        Path out = o.out().toAbsolutePath();
        Files.createDirectories(out.getParent());
        if (!ImageIO.write(img, "png", out.toFile())) throw new IOException("no PNG writer");
        long t4 = System.nanoTime();
        Path list = DataFiles.listBeside(o.out(), "-labels.tsv");
        writeList(list, scene, r);

        int[] k = r.objectsByKind();
        int[] outcomes = new int[4];
        for (int c : r.chosen()) outcomes[c >= 0 ? 0 : -c]++;
        System.out.printf("objects: %d city dots, %d border pieces, %d coast pieces (%s), "
                        + "%d reserved boxes, %d labels%n",
                k[LabelPass.Kind.DOT.ordinal()], k[LabelPass.Kind.BORDER.ordinal()],
                k[LabelPass.Kind.COAST.ordinal()],
                o.coastAsObstacle() ? "obstacles" : "drawn only",
                k[LabelPass.Kind.RESERVED.ordinal()], k[LabelPass.Kind.LABEL.ordinal()]);
        System.out.printf("cities: %d offered, %d labelled; left out: %d whose name found no room,"
                        + " %d whose dot found no room, %d with no label position inside the"
                        + " canvas%n",
                r.chosen().length, outcomes[0], outcomes[-LabelPass.REJECTED],
                outcomes[-LabelPass.DOT_BLOCKED], outcomes[-LabelPass.NOT_OFFERED]);
        System.out.printf("time: footprints %.0f ms, placing %.0f ms, reading results %.0f ms "
                        + "(reading data %.0f ms, projecting and measuring text %.0f ms, "
                        + "drawing %.0f ms)%n",
                ms(r.footprintNanos()), ms(r.placeNanos()), ms(r.readNanos()), ms(t1 - t0),
                ms(t2 - t1), ms(t4 - t3));
        System.out.printf("cities on a line: %d dots kept on a border, %d labels of large cities"
                + " across one%n", r.dotsOnLines(), r.labelsAcrossLines());
        List<String> missing = new ArrayList<>();
        int labelled = largestLabelled(projection, cities, scene, r.chosen(), missing);
        int onCanvas = labelled + missing.size();
        System.out.printf("largest %d cities on the canvas: %d labelled%s%n", onCanvas, labelled,
                missing.isEmpty() ? "" : ", not labelled: " + String.join(", ", missing));
        int capitals = 0;
        List<String> capitalsMissing = new ArrayList<>();
        for (int i = 0; i < scene.labels().size(); i++) {
            City c = scene.labels().get(i).city();
            if (!c.isCapital() || c.population() < CAPITAL_FROM) continue;
            if (r.chosen()[i] >= 0) {
                capitals++;
            } else {
                capitalsMissing.add(c.name());
            }
        }
        System.out.printf("capitals of %,d or more on the canvas: %d of %d labelled%s%n",
                CAPITAL_FROM, capitals, capitals + capitalsMissing.size(),
                capitalsMissing.isEmpty() ? "" : ", not labelled: " + capitalsMissing);
        System.out.printf("wrote %s (%dx%d) and %s%n", o.out(), o.width(), o.height(), list);
        if (o.explain() != null) {
            System.out.print(Explain.story(o.explain(), cities, scene, r));
        }
    }

    /** Capitals of this population or more are reported on. */
    static final long CAPITAL_FROM = 100_000;

    /**
     * Of the {@link #LARGEST} most populous cities of the data whose point lies on the canvas
     * (sections of cities, PPLX, left out), counts those labelled; adds the names of the others to missing.
     */
    static int largestLabelled(Projection p, List<City> cities, Scene scene, int[] chosen,
            List<String> missing) {
        Map<City, Integer> outcome = new HashMap<>();
        List<Label> labels = scene.labels();
        for (int i = 0; i < labels.size(); i++) outcome.put(labels.get(i).city(), chosen[i]);
        int labelled = 0;
        int seen = 0;
        for (City c : cities) {
            if (seen == LARGEST) break;
            if (c.isSection() || !p.isOnCanvas(c.lon(), c.lat())) continue;
            seen++;
            if (outcome.getOrDefault(c, LabelPass.NOT_OFFERED) >= 0) {
                labelled++;
            } else {
                missing.add(c.name());
            }
        }
        return labelled;
    }

    /**
     * One line per city of the scene, in the order of the pass; for a city left out, what blocked
     * each of its positions ("right=Brussels;left=border;...", names of dots marked "(dot)"), or
     * its dot ("dot=...").
     */
    static void writeList(Path file, Scene scene, LabelPass.Result r) throws IOException {
        int[] chosen = r.chosen();
        try (PrintWriter w = new PrintWriter(Files.newBufferedWriter(file, StandardCharsets.UTF_8))) {
            w.println("rank\tname\tcountry\tpopulation\tlon\tlat\tplaced\toutcome\tcandidate"
                    + "\tleft\ttop\tright\tbottom\tfeature\tblocked_by");
            List<Label> labels = scene.labels();
            for (int i = 0; i < labels.size(); i++) {
                Label l = labels.get(i);
                City c = l.city();
                int k = chosen[i];
                String where = "\t\t\t";
                String candidate = "";
                if (k >= 0) {
                    int[] b = LabelPass.labelBox(l, k);
                    where = String.format(Locale.ROOT, "%d\t%d\t%d\t%d", b[0], b[1], b[2], b[3]);
                    candidate = l.candidates().position(k).name().toLowerCase(Locale.ROOT);
                }
                w.printf(Locale.ROOT, "%d\t%s\t%s\t%d\t%.4f\t%.4f\t%s\t%s\t%s\t%s\t%s\t%s%n",
                        i + 1, c.name(), c.country(), c.population(), c.lon(), c.lat(), k >= 0,
                        LabelPass.Result.outcome(k), candidate, where, c.feature(),
                        k >= 0 ? "" : blockedBy(l, r.stories()[i]));
            }
        }
    }

    /** What blocked each position of a label left out, or its dot. */
    static String blockedBy(Label l, LabelPass.Story story) {
        if (story.dotBlocker != null) return "dot=" + story.dotBlocker.name();
        StringBuilder sb = new StringBuilder();
        Candidates cand = l.candidates();
        for (Candidates.Position p : Candidates.Position.values()) {
            int k = cand.indexOf(p);
            String why;
            if (k < 0) {
                why = LabelPass.OFF_CANVAS;
            } else {
                LabelPass.Blocker b = story.blocker(k);
                why = b == null ? "nothing" : b.name();
            }
            if (sb.length() > 0) sb.append(';');
            sb.append(p.name().toLowerCase(Locale.ROOT)).append('=').append(why);
        }
        return sb.toString();
    }

    private static double ms(long nanos) {
        return nanos / 1e6;
    }
}
