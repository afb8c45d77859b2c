package com.tavrint.demo;

import com.tavrint.demo.Tiles.Entry;
import java.awt.Color;
import java.awt.Font;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashMap;
import java.util.List;
import java.util.Map;
import java.util.SortedMap;
import javax.imageio.ImageIO;

/**
 * Places the world's cities once over a block of tiles of a web Mercator zoom level (Europe at
 * zoom 6 by default, 13 x 13 tiles, 3,328 x 3,328 pixels), then cuts the outcome into 256-pixel
 * tiles: writes the list of the cities of every tile and a mosaic of a smaller block, each tile
 * drawn on its own from its list alone, with the seams drawn faintly. Run with --help for the
 * options.
 */
public final class TilesDemo {
    private TilesDemo() {}

    // Bounds the mosaic's picture to a few hundred megabytes of memory.
    private static final int MAX_MOSAIC_TILES = 32;

    /** The command line: the tiles placed in one pass, those of the mosaic, and files. */
    record Args(Tiles canvas, Tiles mosaic, int spacing, Path out, Path dataDir) {
        static final String USAGE = String.join("\n",
                "usage: TilesDemo [options]",
                "  --zoom N           web Mercator zoom level, 1 to " + Tiles.MAX_ZOOM + " (6)",
                "  --window W,S,E,N   lon/lat window placed in one pass, widened to whole tiles"
                        + " (-25,34,45,72: Europe)",
                "  --mosaic W,S,E,N   lon/lat window of the mosaic, widened to whole tiles, inside"
                        + " the placed one (-5,41.5,27.5,55.5: Brest to Minsk, Rome to Copenhagen)",
                "  --spacing N        leave out cities within N pixels of a larger one (12)",
                "  --out FILE         mosaic picture (out/tiles.png); the tiles' list goes beside"
                        + " it",
                "  --data DIR         folder of cities.tsv, borders.tsv, coastline.tsv (data)");

        static Args parse(String... args) {
            Map<String, String> v = new HashMap<>(Map.of("--zoom", "6", "--window", "-25,34,45,72",
                    "--mosaic", "-5,41.5,27.5,55.5", "--spacing", "12", "--out", "out/tiles.png",
                    "--data", "data"));
            for (int i = 0; i < args.length; i += 2) {
                if (!v.containsKey(args[i])) {
                    throw new IllegalArgumentException("unknown option " + args[i]);
                }
                if (i + 1 >= args.length) {
                    throw new IllegalArgumentException("option " + args[i] + " needs a value");
                }
                v.put(args[i], args[i + 1]);
            }
            int zoom = Options.positive("--zoom", v.get("--zoom"), Tiles.MAX_ZOOM);
            Tiles canvas = Tiles.covering(zoom, window("--window", v.get("--window")));
            Tiles mosaic = Tiles.covering(zoom, window("--mosaic", v.get("--mosaic")));
            if (!canvas.contains(mosaic)) {
                throw new IllegalArgumentException(
                        "the --mosaic window must lie inside the --window one");
            }
            if (Math.max(mosaic.columns(), mosaic.rows()) > MAX_MOSAIC_TILES) {
                throw new IllegalArgumentException("the --mosaic window spans more than "
                        + MAX_MOSAIC_TILES + " tiles a side");
            }
            return new Args(canvas, mosaic, Options.positive("--spacing", v.get("--spacing"), 1000),
                    Path.of(v.get("--out")), Path.of(v.get("--data")));
        }

        private static double[] window(String name, String v) {
            try {
                return Options.window(v);
            } catch (IllegalArgumentException e) {
                throw new IllegalArgumentException(e.getMessage().replace("--window", name), e);
            }
        }
    }

    public static void main(String[] args) {
        DemoMain.run("demo-tiles", Args.USAGE, args, Args::parse, TilesDemo::run);
    }

    private static void run(Args o) throws IOException {
        Tiles canvas = o.canvas();
        Tiles block = o.mosaic();
        long t0 = System.nanoTime();
        GeoData.World data = GeoData.readWorld(o.dataDir());
        long t1 = System.nanoTime();
        Projection p = canvas.projection();
        Scene scene = Scene.build(p, data.cities(), data.borders(), data.coast(), Integer.MAX_VALUE,
                o.spacing());
        // Tiles carry no legend: the attribution goes under the mosaic, not into the canvas.
        scene.reservedBoxes().clear();
        long t2 = System.nanoTime();
        LabelPass.Result r = new LabelPass(scene, false).run();
        long t3 = System.nanoTime();
        SortedMap<Long, List<Entry>> tiles = canvas.cut(scene, r.chosen());
        Path list = DataFiles.listBeside(o.out(), "-labels.tsv");
        Path out = o.out().toAbsolutePath();
        Files.createDirectories(out.getParent());
        canvas.writeList(list, tiles);
        long t4 = System.nanoTime();
        BufferedImage img = mosaic(scene, canvas, block, tiles);
        if (!ImageIO.write(img, "png", out.toFile())) throw new IOException("no PNG writer");
        long t5 = System.nanoTime();

        Map<Integer, Integer> tilesOfCity = new HashMap<>();
        int entries = 0;
        for (List<Entry> t : tiles.values()) {
            entries += t.size();
            for (Entry e : t) tilesOfCity.merge(e.rank(), 1, Integer::sum);
        }
        long crossing = tilesOfCity.values().stream().filter(n -> n > 1).count();
        System.out.printf("canvas: zoom %d, tiles %s to %s (%d x %d), %d x %d pixels%n",
                canvas.zoom(), canvas.name(canvas.left(), canvas.top()),
                canvas.name(canvas.left() + canvas.columns() - 1,
                        canvas.top() + canvas.rows() - 1),
                canvas.columns(), canvas.rows(), p.width(), p.height());
        System.out.printf("cities: %d offered, %d placed in one pass; %d tiles hold %d entries; %d"
                        + " cities cross a seam (in 2 to %d tiles)%n",
                r.chosen().length, r.placedLabels(), tiles.size(), entries, crossing,
                tilesOfCity.values().stream().mapToInt(Integer::intValue).max().orElse(0));
        System.out.printf("time: reading data %.0f ms, projecting and measuring %.0f ms, placing"
                        + " %.0f ms, cutting and listing %.0f ms, drawing %d tiles %.0f ms%n",
                ms(t1 - t0), ms(t2 - t1), ms(t3 - t2), ms(t4 - t3), block.columns() * block.rows(),
                ms(t5 - t4));
        System.out.printf("wrote %s (tiles %s to %s) and %s%n", o.out(),
                block.name(block.left(), block.top()),
                block.name(block.left() + block.columns() - 1, block.top() + block.rows() - 1),
                list);
    }

    private static final Color SEAM = new Color(60, 60, 60, 60);
    private static final int FOOTER = 20;

    /**
     * The tiles of the block side by side, each drawn on its own from its list, faint lines on the
     * seams, and the attribution in a band below.
     */
    static BufferedImage mosaic(Scene scene, Tiles canvas, Tiles block,
            Map<Long, List<Entry>> tiles) {
        int w = block.columns() * Tiles.SIZE;
        int h = block.rows() * Tiles.SIZE;
        BufferedImage img = new BufferedImage(w, h + FOOTER, BufferedImage.TYPE_INT_RGB);
        Graphics2D g = img.createGraphics();
        try {
            for (int c = 0; c < block.columns(); c++) {
                for (int r = 0; r < block.rows(); r++) {
                    int x = block.left() + c;
                    int y = block.top() + r;
                    BufferedImage tile = paintTile(
                            scene, x - canvas.left(), y - canvas.top(), tiles.get(Tiles.key(x, y)));
                    g.drawImage(tile, c * Tiles.SIZE, r * Tiles.SIZE, null);
                }
            }
            g.setColor(SEAM);
            for (int c = 1; c < block.columns(); c++) g.fillRect(c * Tiles.SIZE, 0, 1, h);
            for (int r = 1; r < block.rows(); r++) g.fillRect(0, r * Tiles.SIZE, w, 1);
            g.setColor(Color.WHITE);
            g.fillRect(0, h, w, FOOTER);
            g.setRenderingHint(
                    RenderingHints.KEY_TEXT_ANTIALIASING, RenderingHints.VALUE_TEXT_ANTIALIAS_ON);
            g.setFont(new Font(Font.SANS_SERIF, Font.PLAIN, 12));
            g.setColor(new Color(0x505050));
            g.drawString("Zoom " + block.zoom() + " tiles, each drawn from its own list; cities "
                            + "placed once over the zoom level's window \u00b7 "
                            + MapPainter.ATTRIBUTION,
                    6, h + FOOTER - 6);
        } finally {
            g.dispose();
        }
        return img;
    }

    /**
     * Tile (column, row) of the canvas, drawn from its entries alone (null for none): the ground
     * of the map, then the dots, then the names, each in the order of the pass.
     */
    static BufferedImage paintTile(Scene scene, int column, int row, List<Entry> entries) {
        BufferedImage img = new BufferedImage(Tiles.SIZE, Tiles.SIZE, BufferedImage.TYPE_INT_RGB);
        Graphics2D g = img.createGraphics();
        try {
            g.translate(-column * Tiles.SIZE, -row * Tiles.SIZE);
            MapPainter.paintGround(g, scene);
            if (entries != null) {
                for (Entry e : entries) MapPainter.paintDot(g, e.label());
                for (Entry e : entries) MapPainter.paintLabel(g, e.label(), e.candidate());
            }
        } finally {
            g.dispose();
        }
        return img;
    }

    private static double ms(long nanos) {
        return nanos / 1e6;
    }
}
