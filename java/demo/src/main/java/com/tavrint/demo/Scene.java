package com.tavrint.demo;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import java.util.ArrayList;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/**
 * Everything of one map in canvas pixels: the labelled cities with their candidate boxes, the
 * borders and coastline, both as drawn lines and as the short pieces that become obstacles, and
 * the reserved boxes (the attribution's panel).
 */
public final class Scene {
    /** Obstacle pieces are cut to at most this many pixels across, to keep their extents tight. */
    static final int PIECE_SPAN = 48;
    /** Half-width, in pixels, of the band a border or coast piece keeps free of labels. */
    static final int LINE_HALF_WIDTH = 1;

    /** One city: its pixel, its look and its label's candidates (none when none fits). */
    public record Label(City city, LabelStyle style, int px, int py, Candidates candidates) {}

    private final Projection projection;
    private final List<Label> labels = new ArrayList<>();
    private final List<int[]> borderLines = new ArrayList<>();
    private final List<int[]> coastLines = new ArrayList<>();
    private final List<int[]> borderPieces = new ArrayList<>();
    private final List<int[]> coastPieces = new ArrayList<>();
    private final List<int[]> reservedBoxes = new ArrayList<>();

    private Scene(Projection projection) {
        this.projection = projection;
    }

    /**
     * Projects the data: the first maxCities cities (most populous first) whose pixel lies on the
     * canvas and outside the room of every city taken before, and every border and coast line
     * that meets the canvas. A city's room is a circle of spacing pixels times its style's room
     * factor, so that a large city's suburbs do not crowd the map around its name; a city of a
     * million or more yields only to a city within spacing pixels.
     */
    public static Scene build(Projection projection, List<City> cities, List<Polyline> borders,
            List<Polyline> coast, int maxCities, int spacing) {
        Scene s = new Scene(projection);
        int w = projection.width();
        int h = projection.height();
        Rooms rooms = new Rooms(spacing);
        for (City c : cities) {
            if (s.labels.size() >= maxCities) break;
            if (!projection.isOnCanvas(c.lon(), c.lat())) continue;
            double x = projection.x(c.lon());
            double y = projection.y(c.lat());
            LabelStyle style = LabelStyle.forPopulation(c.population());
            // A city of a million or more gives way only to a city within the base spacing (the
            // same place under another name), not to the wider room of a larger neighbour.
            double yieldsWithin = style == LabelStyle.CAPITAL_SIZE ? spacing : Double.MAX_VALUE;
            if (!rooms.tryTake(x, y, spacing * style.roomFactor(), yieldsWithin)) continue;
            int[] size = style.measure(c.name());
            Candidates cand = Candidates.around(x, y, style.clearance(), size[0], size[1], w, h);
            s.labels.add(new Label(c, style, (int) x, (int) y, cand));
        }
        addLines(borders, projection, s.borderLines, s.borderPieces);
        addLines(coast, projection, s.coastLines, s.coastPieces);
        s.reservedBoxes.add(MapPainter.attributionBox(w, h));
        return s;
    }

    // Circles around the points taken, bucketed in square cells of the smallest radius.
    private static final class Rooms {
        private final double cell;
        private final Map<Long, List<double[]>> cells = new HashMap<>();
        private double maxRadius;

        Rooms(double minRadius) {
            this.cell = Math.max(1.0, minRadius);
        }

        // Takes (x, y) with the given radius unless it lies in the circle of a point taken, each
        // circle's radius capped at yieldsWithin.
        boolean tryTake(double x, double y, double radius, double yieldsWithin) {
            long cx = (long) Math.floor(x / cell);
            long cy = (long) Math.floor(y / cell);
            long reach = (long) Math.ceil(maxRadius / cell);
            for (long i = cx - reach; i <= cx + reach; i++) {
                for (long j = cy - reach; j <= cy + reach; j++) {
                    for (double[] p : cells.getOrDefault(key(i, j), List.of())) {
                        if (Math.hypot(p[0] - x, p[1] - y) < Math.min(p[2], yieldsWithin)) {
                            return false;
                        }
                    }
                }
            }
            cells.computeIfAbsent(key(cx, cy), k -> new ArrayList<>())
                    .add(new double[] {x, y, radius});
            maxRadius = Math.max(maxRadius, radius);
            return true;
        }

        private static long key(long cx, long cy) {
            return (cx << 32) ^ (cy & 0xffffffffL);
        }
    }

    private static void addLines(List<Polyline> lines, Projection p, List<int[]> drawn,
            List<int[]> pieces) {
        for (Polyline line : lines) {
            int[] xy = p.toPixels(line.lonLat());
            if (!Footprints.touchesCanvas(xy, p.width(), p.height())) continue;
            drawn.add(xy);
            for (int[] piece : Footprints.splitPolyline(xy, PIECE_SPAN)) {
                if (Footprints.touchesCanvas(piece, p.width(), p.height())) pieces.add(piece);
            }
        }
    }

    public Projection projection() {
        return projection;
    }

    public List<Label> labels() {
        return labels;
    }

    public List<int[]> borderLines() {
        return borderLines;
    }

    public List<int[]> coastLines() {
        return coastLines;
    }

    public List<int[]> borderPieces() {
        return borderPieces;
    }

    public List<int[]> coastPieces() {
        return coastPieces;
    }

    /** Rectangles (left, top, right, bottom, inclusive) that labels must leave free. */
    public List<int[]> reservedBoxes() {
        return reservedBoxes;
    }
}
