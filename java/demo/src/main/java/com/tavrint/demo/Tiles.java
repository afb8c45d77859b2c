package com.tavrint.demo;

import com.tavrint.demo.Scene.Label;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.SortedMap;
import java.util.TreeMap;

/**
 * A block of 256-pixel tiles of one web Mercator zoom level, columns left..left+columns-1 and rows
 * top..top+rows-1, and the outcome of one placement pass over the whole block cut into its tiles.
 *
 * <p>Each tile lists every placed city whose dot or name meets it, at the place the pass chose, in
 * the tile's own pixels. A name across a seam is thus listed by every tile it touches at one
 * place, and tiles drawn one by one from their lists join without a name cut or doubled. Tiles
 * placed each on its own cannot promise that: the tile beside may choose another position for a
 * name that crosses, or drop it for a name that only it sees.
 */
public record Tiles(int zoom, int left, int top, int columns, int rows) {
    /** Pixels along a tile's side. */
    public static final int SIZE = 256;
    /** The deepest zoom level offered: its world, 2^22 pixels a side, is what a scene projects. */
    public static final int MAX_ZOOM = 14;

    /** One placed city as a tile holds it; boxes are left, top, right, bottom in tile pixels. */
    public record Entry(int rank, Label label, int candidate, int[] box, int[] dot) {}

    /** The tiles of the zoom level that meet the lon/lat window W,S,E,N. */
    public static Tiles covering(int zoom, double[] window) {
        if (zoom < 0 || zoom > MAX_ZOOM) throw new IllegalArgumentException("zoom out of range");
        Projection world = Projection.webMercator(zoom, 0, 0, 1, 1);
        int n = 1 << zoom;
        int x0 = tileOf(world.x(window[0]), n, false);
        int x1 = tileOf(world.x(window[2]), n, true);
        int y0 = tileOf(world.y(window[3]), n, false);
        int y1 = tileOf(world.y(window[1]), n, true);
        return new Tiles(zoom, x0, y0, x1 - x0 + 1, y1 - y0 + 1);
    }

    // The tile holding a world pixel, or for a far edge the last tile it closes; within 0..n-1.
    private static int tileOf(double pixel, int n, boolean farEdge) {
        double t = pixel / SIZE;
        double tile = farEdge ? Math.ceil(t) - 1 : Math.floor(t);
        return (int) Math.max(0, Math.min(n - 1, tile));
    }

    /** The canvas of the block: pixel (0, 0) is the top left pixel of tile (left, top). */
    public Projection projection() {
        return Projection.webMercator(
                zoom, (long) left * SIZE, (long) top * SIZE, columns * SIZE, rows * SIZE);
    }

    /** Whether every tile of the other block is one of this block's. */
    public boolean contains(Tiles o) {
        return o.zoom == zoom && o.left >= left && o.top >= top
                && o.left + o.columns <= left + columns && o.top + o.rows <= top + rows;
    }

    /** The tile's name, zoom/x/y. */
    public String name(int x, int y) {
        return zoom + "/" + x + "/" + y;
    }

    /** Key of tile (x, y) in the map returned by {@link #cut}: tiles ordered by x, then by y. */
    public static long key(int x, int y) {
        return (long) x << 32 | y;
    }

    public static int keyX(long key) {
        return (int) (key >>> 32);
    }

    public static int keyY(long key) {
        return (int) key;
    }

    /**
     * Cuts the outcome of a pass over this block's canvas (the chosen candidate of each label of
     * the scene, negative when left out) into the tiles that hold any city, each tile's entries in
     * the order of the pass.
     */
    public SortedMap<Long, List<Entry>> cut(Scene scene, int[] chosen) {
        SortedMap<Long, List<Entry>> tiles = new TreeMap<>();
        List<Label> labels = scene.labels();
        for (int i = 0; i < labels.size(); i++) {
            int k = chosen[i];
            if (k < 0) continue;
            Label l = labels.get(i);
            int[] box = LabelPass.labelBox(l, k);
            int[] dot = LabelPass.dotBounds(l);
            int c0 = column(Math.min(box[0], dot[0]));
            int c1 = column(Math.max(box[2], dot[2]));
            int r0 = row(Math.min(box[1], dot[1]));
            int r1 = row(Math.max(box[3], dot[3]));
            for (int c = c0; c <= c1; c++) {
                for (int r = r0; r <= r1; r++) {
                    Entry e = new Entry(i + 1, l, k, shift(box, c, r), shift(dot, c, r));
                    tiles.computeIfAbsent(key(left + c, top + r), t -> new ArrayList<>()).add(e);
                }
            }
        }
        return tiles;
    }

    // Column and row of the block holding a canvas pixel; a dot's ring may reach past the edge.
    private int column(int px) {
        return Math.max(0, Math.min(columns - 1, Math.floorDiv(px, SIZE)));
    }

    private int row(int py) {
        return Math.max(0, Math.min(rows - 1, Math.floorDiv(py, SIZE)));
    }

    private static int[] shift(int[] b, int column, int row) {
        int dx = column * SIZE;
        int dy = row * SIZE;
        return new int[] {b[0] - dx, b[1] - dy, b[2] - dx, b[3] - dy};
    }

    /** One line per entry of each tile, tiles in key order. */
    public void writeList(Path file, Map<Long, List<Entry>> tiles) throws IOException {
        try (PrintWriter w =
                        new PrintWriter(Files.newBufferedWriter(file, StandardCharsets.UTF_8))) {
            w.println("tile\trank\tname\tpopulation\tleft\ttop\tright\tbottom"
                    + "\tdot_left\tdot_top\tdot_right\tdot_bottom");
            for (Map.Entry<Long, List<Entry>> t : tiles.entrySet()) {
                String tile = name(keyX(t.getKey()), keyY(t.getKey()));
                for (Entry e : t.getValue()) {
                    int[] b = e.box();
                    int[] d = e.dot();
                    w.printf(Locale.ROOT, "%s\t%d\t%s\t%d\t%d\t%d\t%d\t%d\t%d\t%d\t%d\t%d%n", tile,
                            e.rank(), e.label().city().name(), e.label().city().population(),
                            b[0], b[1], b[2], b[3], d[0], d[1], d[2], d[3]);
                }
            }
        }
    }
}
