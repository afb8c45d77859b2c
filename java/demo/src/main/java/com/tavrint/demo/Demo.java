package com.tavrint.demo;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import javax.imageio.ImageIO;

/**
 * Labels a real map through the placement library and writes it as a PNG picture: city names
 * that must not overlap each other, the city dots, the country borders or (by default) the
 * coastline. Run with --help for the options.
 */
public final class Demo {
    private Demo() {}

    public static void main(String[] args) throws IOException {
        System.setProperty("java.awt.headless", "true");
        Options o;
        try {
            if (args.length == 1 && (args[0].equals("--help") || args[0].equals("-h"))) {
                System.out.println(Options.USAGE);
                return;
            }
            o = Options.parse(args);
        } catch (IllegalArgumentException e) {
            System.err.println("demo: " + e.getMessage());
            System.err.println(Options.USAGE);
            System.exit(2);
            return;
        }

        long t0 = System.nanoTime();
        List<City> cities = GeoData.readCities(o.dataDir().resolve("cities.tsv"));
        List<Polyline> borders = GeoData.readPolylines(o.dataDir().resolve("borders.tsv"));
        List<Polyline> coast = GeoData.readPolylines(o.dataDir().resolve("coastline.tsv"));
        long t1 = System.nanoTime();
        double[] w = o.window();
        Projection projection = new Projection(o.width(), o.height(), w[0], w[1], w[2], w[3]);
        Scene scene = Scene.build(projection, cities, borders, coast, o.cities(), o.spacing());
        long t2 = System.nanoTime();
        LabelPass.Result r = new LabelPass(scene, o.coastAsObstacle()).run();
        long t3 = System.nanoTime();
        BufferedImage img = MapPainter.paint(scene, r.chosen(), o.showRejected());
        Path out = o.out().toAbsolutePath();
        Files.createDirectories(out.getParent());
        if (!ImageIO.write(img, "png", out.toFile())) throw new IOException("no PNG writer");
        long t4 = System.nanoTime();

        int[] k = r.objectsByKind();
        int notOffered = scene.labels().size() - k[LabelPass.Kind.LABEL.ordinal()];
        System.out.printf("objects: %d city dots, %d border pieces, %d coast pieces (%s), "
                        + "%d reserved boxes, %d labels%n",
                k[LabelPass.Kind.DOT.ordinal()], k[LabelPass.Kind.BORDER.ordinal()],
                k[LabelPass.Kind.COAST.ordinal()],
                o.coastAsObstacle() ? "obstacles" : "drawn only",
                k[LabelPass.Kind.RESERVED.ordinal()], k[LabelPass.Kind.LABEL.ordinal()]);
        System.out.printf("labels: %d placed, %d rejected%s%n", r.placedLabels(),
                r.rejectedLabels(),
                notOffered > 0 ? ", " + notOffered + " without a candidate inside the canvas"
                               : "");
        System.out.printf("time: footprints %.0f ms, placing %.0f ms, reading results %.0f ms "
                        + "(reading data %.0f ms, projecting and measuring text %.0f ms, "
                        + "drawing %.0f ms)%n",
                ms(r.footprintNanos()), ms(r.placeNanos()), ms(r.readNanos()), ms(t1 - t0),
                ms(t2 - t1), ms(t4 - t3));
        System.out.printf("wrote %s (%dx%d)%n", o.out(), o.width(), o.height());
    }

    private static double ms(long nanos) {
        return nanos / 1e6;
    }
}
