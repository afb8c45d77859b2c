package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.*;

import java.awt.image.BufferedImage;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.HashSet;
import java.util.List;
import java.util.Map;
import java.util.Set;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** One pass over a block of tiles, cut into tiles: what a tile server draws from the list. */
class TilesTest {
    private static final Path DATA = Path.of("..", "..", "data");

    @Test
    void webMercatorPixelsAndTilesOfKnownPlaces() {
        // Zoom 8: 65,536 pixels a side; the edge latitude is 85.0511287798 degrees.
        Projection world = Projection.webMercator(8, 0, 0, 1, 1);
        double[][] lonLatXy = {{-180, 85.0511287798, 0, 0}, {0, 0, 32768, 32768},
            {180, -85.0511287798, 65536, 65536}, {90, 0, 49152, 32768}};
        for (double[] c : lonLatXy) {
            assertEquals(c[2], world.x(c[0]), 1e-6, "x of " + c[0]);
            assertEquals(c[3], world.y(c[1]), 1e-6, "y of " + c[1]);
        }
        // Helsinki lies in tile 10/582/296: inside the canvas of that one tile.
        Projection tile = Projection.webMercator(10, 582 * 256, 296 * 256, 256, 256);
        assertTrue(tile.isOnCanvas(24.9384, 60.1699));
        assertFalse(tile.isOnCanvas(24.9384 + 0.36, 60.1699));
        // A window whose east edge is a seam takes no column beyond it.
        assertEquals(new Tiles(3, 4, 0, 1, 8), Tiles.covering(3, new double[] {0, -85, 45, 85}));
        assertEquals(new Tiles(3, 0, 0, 8, 8), Tiles.covering(3, new double[] {-180, -90, 180, 90}),
                "the whole world");
    }

    @Test
    void badOptionsAreRefusedWithTheirReason() {
        // The part of the message expected, then the arguments.
        String[][] cases = {{"unknown option --zoom8", "--zoom8"},
            {"--spacing needs a value", "--spacing"}, {"--zoom out of range: 0", "--zoom", "0"},
            {"--mosaic takes W,S,E,N", "--mosaic", "1,2,3"},
            {"must lie inside", "--window", "0,40,10,50", "--mosaic", "5,45,14,49"},
            {"more than 32 tiles", "--zoom", "10", "--mosaic", "0,40,12,50"}};
        for (String[] c : cases) {
            String[] args = Arrays.copyOfRange(c, 1, c.length);
            IllegalArgumentException e = assertThrows(
                    IllegalArgumentException.class, () -> TilesDemo.Args.parse(args), c[0]);
            assertTrue(e.getMessage().contains(c[0]), e.getMessage());
        }
    }

    // A line of the list, its box and dot in pixels of the zoom level rather than of its tile.
    private record Line(int x, int y, int rank, int[] box, int[] dot) {}

    @Test
    void labelsAcrossSeamsAreInEveryTileTheyTouchAtOnePlace(@TempDir Path dir) throws Exception {
        // The window's corners lie in tiles 8/130/83 and 8/134/86.
        final int x0 = 130;
        final int y0 = 83;
        final int x1 = 134;
        final int y1 = 86;
        TilesDemo.main(new String[] {"--zoom", "8", "--window", "3,50,9,52.5", "--mosaic",
            "3,50,9,52.5", "--data", DATA.toString(), "--out", dir + "/t.png"});
        Map<Integer, Line> first = new HashMap<>();
        Map<Integer, Set<List<Integer>>> tilesOf = new HashMap<>();
        Map<List<Integer>, List<int[]>> boxesOfTile = new HashMap<>();
        List<String> tsv = Files.readAllLines(dir.resolve("t-labels.tsv"));
        for (String s : tsv.subList(1, tsv.size())) {
            String[] f = s.split("\t", -1);
            String[] t = f[0].split("/");
            assertEquals("8", t[0]);
            List<Integer> tile = List.of(Integer.parseInt(t[1]), Integer.parseInt(t[2]));
            int[] n = new int[8]; // box, then dot: x at even places, y at odd ones
            for (int i = 0; i < 8; i++) n[i] = Integer.parseInt(f[4 + i]) + tile.get(i % 2) * 256;
            Line l = new Line(tile.get(0), tile.get(1), Integer.parseInt(f[1]),
                    Arrays.copyOf(n, 4), Arrays.copyOfRange(n, 4, 8));
            assertTrue(l.x >= x0 && l.x <= x1 && l.y >= y0 && l.y <= y1, "tile off the canvas");
            assertTrue(tilesOf.computeIfAbsent(l.rank, r -> new HashSet<>()).add(tile),
                    "city " + l.rank + " twice in tile " + tile);
            Line f0 = first.computeIfAbsent(l.rank, r -> l);
            assertArrayEquals(f0.box, l.box, "label " + l.rank + " moved");
            assertArrayEquals(f0.dot, l.dot, "dot " + l.rank + " moved");
            for (int[] other : boxesOfTile.computeIfAbsent(tile, k -> new ArrayList<>())) {
                assertFalse(LabelPass.overlap(other, l.box), "labels overlap in " + tile);
            }
            boxesOfTile.get(tile).add(l.box);
        }
        int crossing = 0;
        for (Line f : first.values()) {
            Set<List<Integer>> touched = new HashSet<>();
            for (int x = Math.max(x0, Math.min(f.box[0], f.dot[0]) >> 8);
                    x <= Math.min(x1, Math.max(f.box[2], f.dot[2]) >> 8); x++) {
                for (int y = Math.max(y0, Math.min(f.box[1], f.dot[1]) >> 8);
                        y <= Math.min(y1, Math.max(f.box[3], f.dot[3]) >> 8); y++) {
                    touched.add(List.of(x, y));
                }
            }
            assertEquals(touched, tilesOf.get(f.rank), "tiles of city " + f.rank);
            if (touched.size() > 1) crossing++;
        }
        assertTrue(crossing >= 20, crossing + " cities across seams");
        BufferedImage mosaic = ImageIO.read(dir.resolve("t.png").toFile());
        assertEquals((x1 - x0 + 1) * 256, mosaic.getWidth());
        assertTrue(mosaic.getHeight() >= (y1 - y0 + 1) * 256);
    }
}
