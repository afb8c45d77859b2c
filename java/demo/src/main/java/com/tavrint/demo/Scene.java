package com.tavrint.demo;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import java.util.ArrayList;
import java.util.Comparator;
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
    // Cities left out before the pass by the spacing rule, with the city whose room they lie in.
    private final Map<City, City> spacedOut = new HashMap<>();

    private Scene(Projection projection) {
        this.projection = projection;
    }

    /**
     * Projects the data: the first maxCities cities in the order of the pass whose pixel lies on
     * the canvas and outside the room of every city taken before, and every border and coast line
     * that meets the canvas. The pass takes the cities by their style (the order of size of their
     * population), capitals first within a style, then by population; sections of cities (PPLX:
     * districts, new towns) are left out. A city's room is a circle of spacing pixels times its
     * style's room factor, so that a large city's suburbs do not crowd the map around its name; a
     * city of a million or more yields only to a city within spacing pixels, and a capital
     * yields to none.
     */
    public static Scene build(Projection projection, List<City> cities, List<Polyline> borders,
            List<Polyline> coast, int maxCities, int spacing) {
        Scene s = new Scene(projection);
        int w = projection.width();
        int h = projection.height();
        Rooms rooms = new Rooms(spacing);
        for (City c : passOrder(projection, cities)) {
            if (s.labels.size() >= maxCities) break;
            double x = projection.x(c.lon());
            double y = projection.y(c.lat());
            LabelStyle style = LabelStyle.forPopulation(c.population());
            // A city of a million or more gives way only to a city within the base spacing (the
            // same place under another name), not to the wider room of a larger neighbour.
            double yieldsWithin = c.isCapital() ? 0
                    : style == LabelStyle.CAPITAL_SIZE ? spacing : Double.MAX_VALUE;
            City taken = rooms.tryTake(c, x, y, spacing * style.roomFactor(), yieldsWithin);
            if (taken != null) {
                s.spacedOut.put(c, taken);
                continue;
            }
            int[] size = style.measure(c.name());
            Candidates cand = Candidates.around(x, y, style.clearance(), size[0], size[1], w, h);
            s.labels.add(new Label(c, style, (int) x, (int) y, cand));
        }
        addLines(borders, projection, s.borderLines, s.borderPieces);
        addLines(coast, projection, s.coastLines, s.coastPieces);
        s.reservedBoxes.add(MapPainter.attributionBox(w, h));
        return s;
    }

    /**
     * The cities on the canvas in the order of the pass: by style (largest first), capitals first
     * within a style, then by population; sections of cities left out. The sort is stable, so
     * the file's order decides among equal populations.
     */
    static List<City> passOrder(Projection projection, List<City> cities) {
        List<City> order = new ArrayList<>();
        for (City c : cities) {
            if (!c.isSection() && projection.isOnCanvas(c.lon(), c.lat())) order.add(c);
        }
        order.sort(Comparator.comparingInt((City c) -> LabelStyle.forPopulation(c.population())
                .ordinal()).thenComparing(c -> !c.isCapital())
                .thenComparing(Comparator.comparingLong(City::population).reversed()));
        return order;
    }

    // Circles around the points taken, bucketed in square cells of the smallest radius.
    private static final class Rooms {
        private final double cell;
        private final Map<Long, List<Room>> cells = new HashMap<>();
        private double maxRadius;

        private record Room(City city, double x, double y, double radius) {}

        Rooms(double minRadius) {
            this.cell = Math.max(1.0, minRadius);
        }

        // Takes (x, y) with the given radius unless it lies in the circle of a city taken, each
        // circle's radius capped at yieldsWithin; returns that city, or null when taken.
        City tryTake(City city, double x, double y, double radius, double yieldsWithin) {
            long cx = (long) Math.floor(x / cell);
            long cy = (long) Math.floor(y / cell);
            long reach = (long) Math.ceil(maxRadius / cell);
            for (long i = cx - reach; i <= cx + reach; i++) {
                for (long j = cy - reach; j <= cy + reach; j++) {
                    for (Room r : cells.getOrDefault(key(i, j), List.of())) {
                        if (Math.hypot(r.x() - x, r.y() - y) < Math.min(r.radius(), yieldsWithin)) {
                            return r.city();
                        }
                    }
                }
            }
            cells.computeIfAbsent(key(cx, cy), k -> new ArrayList<>())
                    .add(new Room(city, x, y, radius));
            maxRadius = Math.max(maxRadius, radius);
            return null;
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

    /** The cities the spacing rule left out, each with the city in whose room it lies. */
    public Map<City, City> spacedOut() {
        return spacedOut;
    }

    /** Rectangles (left, top, right, bottom, inclusive) that labels must leave free. */
    public List<int[]> reservedBoxes() {
        return reservedBoxes;
    }
}
