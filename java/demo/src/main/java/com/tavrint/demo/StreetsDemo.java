package com.tavrint.demo;

import com.tavrint.core.util.index.grid.AvoidContainer;
import com.tavrint.core.util.index.grid.AvoidObject;
import com.tavrint.demo.StreetData.Poi;
import com.tavrint.demo.StreetData.Way;
import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Font;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.Shape;
import java.awt.font.GlyphVector;
import java.awt.font.LineMetrics;
import java.awt.geom.AffineTransform;
import java.awt.geom.Ellipse2D;
import java.awt.geom.Path2D;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.io.PrintWriter;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.Set;
import javax.imageio.ImageIO;

/**
 * A street map of central Helsinki labelled through the placement library: street names that run
 * along their streets, repeated along long ones, and points of interest with icons and names,
 * none over another. A name's footprint is its stretch of street stroked by the text's
 * half-height, so names at a crossing or in a bend collide only where their letters would.
 * Writes the picture and the list of every label beside it. Run with --help for the options.
 */
public final class StreetsDemo {
    static final String USAGE = String.join("\n",
            "usage: StreetsDemo [options]",
            "  --scale N     pixels per metre (1.25)",
            "  --repeat N    pixels between repeated names of one street (260)",
            "  --out FILE    output picture (out/streets.png); the label list goes beside it",
            "  --data DIR    folder of streets.tsv, buildings.tsv, pois.tsv, water.tsv (data/helsinki)");

    // The window of the data: longitude 24.935 to 24.954, latitude 60.164 to 60.179.
    static final double WEST = 24.935;
    static final double EAST = 24.954;
    static final double SOUTH = 60.164;
    static final double NORTH = 60.179;
    static final String ATTRIBUTION = "\u00a9 OpenStreetMap contributors (ODbL)";
    static final String TITLE = "Helsinki \u00b7 Kluuvi, Kaartinkaupunki, Kamppi";

    /** The options of one run. */
    record Options(double scale, double repeat, Path out, Path dataDir) {
        static Options parse(String... args) {
            double scale = 1.25;
            double repeat = 260;
            Path out = Path.of("out", "streets.png");
            Path data = Path.of("data", "helsinki");
            for (int i = 0; i < args.length; i++) {
                String a = args[i];
                if (!Set.of("--scale", "--repeat", "--out", "--data").contains(a)) {
                    throw new IllegalArgumentException("unknown option " + a);
                }
                if (i + 1 >= args.length) {
                    throw new IllegalArgumentException("option " + a + " needs a value");
                }
                String v = args[++i];
                switch (a) {
                    case "--scale" -> scale = number(a, v, 0.2, 5);
                    case "--repeat" -> repeat = number(a, v, 0, 5000);
                    case "--out" -> out = Path.of(v);
                    default -> data = Path.of(v);
                }
            }
            return new Options(scale, repeat, out, data);
        }

        private static double number(String name, String v, double min, double max) {
            double d;
            try {
                d = Double.parseDouble(v);
            } catch (NumberFormatException e) {
                throw new IllegalArgumentException(name + " takes a number, not " + v);
            }
            if (!(d >= min && d <= max)) {
                throw new IllegalArgumentException(name + " takes " + min + " to " + max + ": " + v);
            }
            return d;
        }
    }

    /** Street classes in order of importance: drawn width in metres and label font. */
    enum StreetClass {
        PRIMARY(15, Font.BOLD, 12f, Set.of("primary", "primary_link", "trunk")),
        SECONDARY(13, Font.BOLD, 11.5f, Set.of("secondary", "secondary_link")),
        TERTIARY(12, Font.PLAIN, 11.5f, Set.of("tertiary", "tertiary_link")),
        LOCAL(11, Font.PLAIN, 11f, Set.of("residential", "unclassified", "living_street")),
        PEDESTRIAN(9, Font.PLAIN, 10.5f, Set.of("pedestrian")),
        SERVICE(5, Font.PLAIN, 10f, Set.of("service")),
        PATH(1.6, Font.PLAIN, 0f, Set.of("footway", "cycleway", "steps", "path", "trail",
                "corridor", "elevator", "highway"));

        final double widthMetres;
        final Font font;
        final Set<String> tags;

        StreetClass(double widthMetres, int style, float size, Set<String> tags) {
            this.widthMetres = widthMetres;
            this.font = size > 0 ? new Font(LabelStyle.FAMILY, style, 1).deriveFont(size) : null;
            this.tags = tags;
        }

        static StreetClass of(String tag) {
            for (StreetClass c : values()) {
                if (c.tags.contains(tag)) return c;
            }
            return PATH;
        }

        boolean labelled() {
            return font != null;
        }
    }

    /** Point-of-interest groups in order of importance: icon colour and letter. */
    enum PoiGroup {
        CULTURE(new Color(0x7B3FA0), "M", Set.of("tourism=museum", "tourism=gallery",
                "tourism=attraction", "amenity=theatre", "amenity=cinema", "amenity=library",
                "amenity=arts_centre")),
        WORSHIP(new Color(0x555555), "+", Set.of("amenity=place_of_worship")),
        HOTEL(new Color(0x2F6DB5), "H", Set.of("tourism=hotel", "tourism=hostel")),
        FOOD(new Color(0xD9731A), "R", Set.of("amenity=restaurant")),
        CAFE(new Color(0x8A5A2B), "C", Set.of("amenity=cafe")),
        DRINK(new Color(0xB8336A), "B", Set.of("amenity=pub", "amenity=bar"));

        final Color color;
        final String letter;
        final Set<String> kinds;

        PoiGroup(Color color, String letter, Set<String> kinds) {
            this.color = color;
            this.letter = letter;
            this.kinds = kinds;
        }

        static PoiGroup of(String kind) {
            for (PoiGroup g : values()) {
                if (g.kinds.contains(kind)) return g;
            }
            return null;
        }
    }

    static final int ICON_RADIUS = 7;
    static final Font POI_FONT = new Font(LabelStyle.FAMILY, Font.PLAIN, 1).deriveFont(10.5f);
    static final Font ICON_FONT = new Font(LabelStyle.FAMILY, Font.BOLD, 1).deriveFont(9.5f);

    /**
     * A name placed along a street: its text, class, the stretch it runs along (upright), where
     * the stretch starts on its chain, and the bounding box of its footprint.
     */
    record StreetName(String name, StreetClass cls, double[] path, double start, int[] bounds) {}

    /** A point of interest offered to the pass; chosen is its candidate, or -1. */
    record PoiLabel(Poi poi, PoiGroup group, int px, int py, Candidates candidates) {}

    /** Local equirectangular projection of the window at the given scale. */
    record Frame(double scale, int width, int height) {
        static final double METRES_PER_DEGREE = 111_320;

        static Frame of(double scale) {
            double kx = Math.cos(Math.toRadians((SOUTH + NORTH) / 2));
            int w = (int) Math.round((EAST - WEST) * kx * METRES_PER_DEGREE * scale);
            int h = (int) Math.round((NORTH - SOUTH) * METRES_PER_DEGREE * scale);
            return new Frame(scale, w, h);
        }

        double x(double lon) {
            return (lon - WEST) * Math.cos(Math.toRadians((SOUTH + NORTH) / 2))
                    * METRES_PER_DEGREE * scale;
        }

        double y(double lat) {
            return (NORTH - lat) * METRES_PER_DEGREE * scale;
        }

        double[] project(double[] lonLat) {
            double[] xy = new double[lonLat.length];
            for (int i = 0; i + 1 < lonLat.length; i += 2) {
                xy[i] = x(lonLat[i]);
                xy[i + 1] = y(lonLat[i + 1]);
            }
            return xy;
        }
    }

    private StreetsDemo() {}

    public static void main(String[] args) {
        System.setProperty("java.awt.headless", "true");
        Options o;
        try {
            if (args.length == 1 && (args[0].equals("--help") || args[0].equals("-h"))) {
                System.out.println(USAGE);
                return;
            }
            o = Options.parse(args);
        } catch (IllegalArgumentException e) {
            System.err.println("demo-streets: " + e.getMessage() + " (--help lists the options)");
            System.exit(2);
            return;
        }
        try {
            run(o);
        } catch (IOException e) {
            System.err.println("demo-streets: " + DataFiles.describe(e));
            System.exit(1);
        }
    }

    private static void run(Options o) throws IOException {
        StreetData.Map map = StreetData.read(o.dataDir());
        Frame f = Frame.of(o.scale());
        Pass pass = new Pass(f, o.repeat());
        long t0 = System.nanoTime();
        pass.run(map);
        long t1 = System.nanoTime();
        BufferedImage img = paint(f, map, pass);
        Path out = o.out().toAbsolutePath();
        Files.createDirectories(out.getParent());
        if (!ImageIO.write(img, "png", out.toFile())) throw new IOException("no PNG writer");
        Path list = DataFiles.listBeside(o.out(), "-labels.tsv");
        pass.writeList(list);

        System.out.printf("streets: %d named chains, %d names placed along them (%d streets"
                        + " named at least once, %d named twice or more), %d attempts refused%n",
                pass.chainCount, pass.names.size(), pass.streetsNamed(), pass.streetsRepeated(),
                pass.refusedAttempts);
        System.out.printf("points of interest: %d offered, %d placed with icon and name, %d left"
                        + " out%n", pass.pois.size(), pass.placedPois(),
                pass.pois.size() - pass.placedPois());
        System.out.printf("cell precision: %d of the %d street names placed have a bounding box"
                        + " that overlaps another label's or icon's; boxes alone would have refused"
                        + " them%n", pass.namesOnlyCellsAllow(), pass.names.size());
        System.out.printf("pass: %d objects in %.0f ms%n", pass.objects, (t1 - t0) / 1e6);
        System.out.printf("wrote %s (%dx%d) and %s%n", o.out(), f.width(), f.height(), list);
    }

    /** The placement pass of the street map. */
    static final class Pass {
        final Frame frame;
        final double repeat;
        final List<StreetName> names = new ArrayList<>();
        final List<PoiLabel> pois = new ArrayList<>();
        final List<Integer> poiChosen = new ArrayList<>();
        final List<int[]> reserved = new ArrayList<>();
        int chainCount;
        int refusedAttempts;
        int objects;

        Pass(Frame frame, double repeat) {
            this.frame = frame;
            this.repeat = repeat;
        }

        void run(StreetData.Map map) {
            reserved.add(attributionBox(frame));
            reserved.add(titleBox(frame));
            Map<StreetClass, Map<String, List<double[]>>> byClass = new LinkedHashMap<>();
            for (Way w : map.streets()) {
                StreetClass c = StreetClass.of(w.kind());
                if (w.name().isEmpty() || !c.labelled()) continue;
                byClass.computeIfAbsent(c, k -> new LinkedHashMap<>())
                        .computeIfAbsent(w.name(), k -> new ArrayList<>())
                        .add(frame.project(w.lonLat()));
            }
            for (Poi p : map.pois()) {
                PoiGroup g = PoiGroup.of(p.kind());
                if (g == null || p.name().isBlank()) continue;
                double x = frame.x(p.lon());
                double y = frame.y(p.lat());
                if (x < 0 || y < 0 || x >= frame.width() || y >= frame.height()) continue;
                int[] size = measure(POI_FONT, p.name());
                pois.add(new PoiLabel(p, g, (int) x, (int) y, Candidates.around(x, y,
                        ICON_RADIUS + 2, size[0], size[1], frame.width(), frame.height())));
                poiChosen.add(-1);
            }
            pois.sort(Comparator.comparing(PoiLabel::group));

            try (AvoidContainer c = new AvoidContainer()) {
                c.setDeviceRect(0, 0, frame.width(), frame.height());
                for (int[] b : reserved) {
                    c.newObject().addRect(b[0], b[1], b[2], b[3]).addForced();
                    objects++;
                }
                // Main streets' names, then culture and worship, then the other streets, then
                // hotels, food and drink.
                nameStreets(c, byClass, StreetClass.PRIMARY, StreetClass.SECONDARY);
                placePois(c, PoiGroup.CULTURE, PoiGroup.WORSHIP);
                nameStreets(c, byClass, StreetClass.TERTIARY, StreetClass.LOCAL,
                        StreetClass.PEDESTRIAN, StreetClass.SERVICE);
                placePois(c, PoiGroup.HOTEL, PoiGroup.FOOD, PoiGroup.CAFE, PoiGroup.DRINK);
            }
        }

        private void nameStreets(AvoidContainer c, Map<StreetClass, Map<String, List<double[]>>> byClass,
                StreetClass... classes) {
            for (StreetClass cls : classes) {
                Map<String, List<double[]>> streets = byClass.getOrDefault(cls, Map.of());
                List<Map.Entry<String, double[]>> chains = new ArrayList<>();
                for (Map.Entry<String, List<double[]>> e : streets.entrySet()) {
                    for (double[] chain : StreetLabels.chains(e.getValue())) {
                        chains.add(Map.entry(e.getKey(), chain));
                    }
                }
                chains.sort(Comparator.comparingDouble(
                        (Map.Entry<String, double[]> e) -> -StreetLabels.length(e.getValue())));
                chainCount += chains.size();
                for (Map.Entry<String, double[]> e : chains) nameChain(c, e.getKey(), cls, e.getValue());
            }
        }

        // One name per slot of the chain, at the first readable free stretch from the slot's
        // middle outwards.
        private void nameChain(AvoidContainer c, String name, StreetClass cls, double[] chain) {
            double textWidth = cls.font.getStringBounds(name, LabelStyle.RENDER_CONTEXT).getWidth();
            LineMetrics lm = cls.font.getLineMetrics(name, LabelStyle.RENDER_CONTEXT);
            int halfHeight = (int) Math.ceil((lm.getAscent() + lm.getDescent()) / 2) + 1;
            double w = textWidth + 4;
            double len = StreetLabels.length(chain);
            for (double[] slot : StreetLabels.slots(len, w, repeat, 6)) {
                for (double s : slot) {
                    double[] path = StreetLabels.subPath(chain, s, s + w);
                    if (path.length < 4 || !StreetLabels.readable(path)) continue;
                    int[] line = StreetLabels.footprint(path);
                    if (line.length < 4) continue;
                    if (nearSameName(name, path)) continue;
                    AvoidObject label = c.newObject().setStringId(name).addLine(line, halfHeight);
                    // Round the bends, where the strokes of two segments leave a wedge open.
                    for (int i = 2; i + 3 < line.length; i += 2) {
                        label.addRing(Footprints.octagonRing(line[i], line[i + 1], halfHeight - 1));
                    }
                    objects++;
                    if (label.add()) {
                        names.add(new StreetName(name, cls, StreetLabels.upright(path), s,
                                bounds(line, halfHeight)));
                        break;
                    }
                    refusedAttempts++;
                    label.recycle();
                }
            }
        }

        // Whether a name of this street already stands within the repeat distance: the two
        // carriageways of one street are named once.
        private boolean nearSameName(String name, double[] path) {
            double[] mid = pointAt(path, StreetLabels.length(path) / 2);
            for (StreetName other : names) {
                if (!other.name().equals(name)) continue;
                double[] o = pointAt(other.path(), StreetLabels.length(other.path()) / 2);
                if (Math.hypot(mid[0] - o[0], mid[1] - o[1]) < repeat) return true;
            }
            return false;
        }

        static int[] bounds(int[] line, int pad) {
            int[] b = {Integer.MAX_VALUE, Integer.MAX_VALUE, Integer.MIN_VALUE, Integer.MIN_VALUE};
            for (int i = 0; i + 1 < line.length; i += 2) {
                b[0] = Math.min(b[0], line[i] - pad);
                b[1] = Math.min(b[1], line[i + 1] - pad);
                b[2] = Math.max(b[2], line[i] + pad);
                b[3] = Math.max(b[3], line[i + 1] + pad);
            }
            return b;
        }

        /**
         * Street names placed whose bounding box overlaps the bounding box of another label or
         * icon kept: a placer that sees only boxes would have refused every one of them.
         */
        int namesOnlyCellsAllow() {
            List<int[]> boxes = new ArrayList<>();
            for (StreetName s : names) boxes.add(s.bounds());
            for (int i = 0; i < pois.size(); i++) {
                int k = poiChosen.get(i);
                if (k < 0) continue;
                PoiLabel p = pois.get(i);
                boxes.add(LabelPass.labelBoxOf(p.candidates(), k));
                boxes.add(new int[] {p.px() - ICON_RADIUS, p.py() - ICON_RADIUS,
                    p.px() + ICON_RADIUS, p.py() + ICON_RADIUS});
            }
            int n = 0;
            for (int i = 0; i < names.size(); i++) {
                for (int j = 0; j < boxes.size(); j++) {
                    if (j != i && LabelPass.overlap(boxes.get(i), boxes.get(j))) {
                        n++;
                        break;
                    }
                }
            }
            return n;
        }

        private void placePois(AvoidContainer c, PoiGroup... groups) {
            Set<PoiGroup> wanted = Set.of(groups);
            for (int i = 0; i < pois.size(); i++) {
                PoiLabel p = pois.get(i);
                if (!wanted.contains(p.group()) || p.candidates().isEmpty()) continue;
                AvoidObject icon = c.newObject().addRing(
                        Footprints.octagonRing(p.px(), p.py(), ICON_RADIUS));
                objects++;
                if (!icon.add()) {
                    icon.recycle();
                    continue;
                }
                Candidates cand = p.candidates();
                int left = cand.left(0);
                int top = cand.top(0);
                AvoidObject label = c.newObject().setStringId(p.poi().name()).addRect(
                        left, top, left + cand.width() - 1, top + cand.height() - 1);
                for (int k = 1; k < cand.size(); k++) label.addOffset(cand.dx(k), cand.dy(k));
                objects++;
                if (label.add()) {
                    poiChosen.set(i, label.candidate());
                } else {
                    label.recycle();
                    icon.recycle();
                }
            }
        }

        int placedPois() {
            return (int) poiChosen.stream().filter(k -> k >= 0).count();
        }

        int streetsNamed() {
            return (int) names.stream().map(StreetName::name).distinct().count();
        }

        int streetsRepeated() {
            Map<String, Integer> n = new LinkedHashMap<>();
            for (StreetName s : names) n.merge(s.name(), 1, Integer::sum);
            return (int) n.values().stream().filter(v -> v >= 2).count();
        }

        void writeList(Path file) throws IOException {
            try (PrintWriter w =
                            new PrintWriter(Files.newBufferedWriter(file, StandardCharsets.UTF_8))) {
                w.println("kind\tname\tclass\tplaced\tcandidate\tx\ty");
                for (StreetName s : names) {
                    w.printf(Locale.ROOT, "street\t%s\t%s\ttrue\talong %.0f px\t%.0f\t%.0f%n",
                            s.name(), s.cls().name().toLowerCase(Locale.ROOT), s.start(),
                            s.path()[0], s.path()[1]);
                }
                for (int i = 0; i < pois.size(); i++) {
                    PoiLabel p = pois.get(i);
                    int k = poiChosen.get(i);
                    w.printf(Locale.ROOT, "poi\t%s\t%s\t%s\t%s\t%d\t%d%n", p.poi().name(),
                            p.poi().kind(), k >= 0,
                            k >= 0 ? p.candidates().position(k).name().toLowerCase(Locale.ROOT)
                                   : "",
                            p.px(), p.py());
                }
            }
        }
    }

    static int[] measure(Font font, String text) {
        double w = font.getStringBounds(text, LabelStyle.RENDER_CONTEXT).getWidth();
        LineMetrics lm = font.getLineMetrics(text, LabelStyle.RENDER_CONTEXT);
        return new int[] {(int) Math.ceil(w) + 2, (int) Math.ceil(lm.getAscent() + lm.getDescent()) + 2};
    }

    static final Font PANEL_FONT = new Font(LabelStyle.FAMILY, Font.PLAIN, 1).deriveFont(12f);
    static final Font TITLE_FONT = new Font(LabelStyle.FAMILY, Font.BOLD, 1).deriveFont(17f);

    static int[] attributionBox(Frame f) {
        int w = measure(PANEL_FONT, ATTRIBUTION)[0] + 12;
        return new int[] {f.width() - w, f.height() - 22, f.width() - 1, f.height() - 1};
    }

    static int[] titleBox(Frame f) {
        int w = measure(TITLE_FONT, TITLE)[0] + 20;
        return new int[] {0, 0, w, 34};
    }

    // --- painting ---

    private static final Color LAND = new Color(0xF2EFE9);
    private static final Color WATER = new Color(0xAAD3DF);
    private static final Color BUILDING = new Color(0xD9D0C9);
    private static final Color BUILDING_EDGE = new Color(0xC4B6AB);
    private static final Color CASING = new Color(0xB9B0A6);
    private static final Color ROAD = Color.WHITE;
    private static final Color MAIN_ROAD = new Color(0xFCEFC4);
    private static final Color PATH = new Color(0xE0786A);
    private static final Color TEXT = new Color(0x333333);

    static BufferedImage paint(Frame f, StreetData.Map map, Pass pass) {
        BufferedImage img = new BufferedImage(f.width(), f.height(), BufferedImage.TYPE_INT_RGB);
        Graphics2D g = img.createGraphics();
        try {
            g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
            g.setRenderingHint(RenderingHints.KEY_TEXT_ANTIALIASING,
                    RenderingHints.VALUE_TEXT_ANTIALIAS_ON);
            g.setRenderingHint(RenderingHints.KEY_FRACTIONALMETRICS,
                    RenderingHints.VALUE_FRACTIONALMETRICS_ON);
            g.setRenderingHint(RenderingHints.KEY_STROKE_CONTROL, RenderingHints.VALUE_STROKE_PURE);
            g.setColor(LAND);
            g.fillRect(0, 0, f.width(), f.height());
            paintWater(g, f, map.water());
            for (Way b : map.buildings()) {
                Path2D.Double p = path(f.project(b.lonLat()));
                p.closePath();
                g.setColor(BUILDING);
                g.fill(p);
                g.setColor(BUILDING_EDGE);
                g.setStroke(new BasicStroke(0.8f));
                g.draw(p);
            }
            paintStreets(g, f, map.streets());
            for (StreetName s : pass.names) paintAlong(g, s);
            for (int i = 0; i < pass.pois.size(); i++) {
                int k = pass.poiChosen.get(i);
                if (k >= 0) paintPoi(g, pass.pois.get(i), k);
            }
            paintPanels(g, f);
        } finally {
            g.dispose();
        }
        return img;
    }

    // Closed water ways are areas; open coastline pieces are closed by a straight chord along the
    // window's edge, where they were cut; other open ways (streams, drains) are drawn as lines.
    private static void paintWater(Graphics2D g, Frame f, List<Way> water) {
        for (Way w : water) {
            Path2D.Double p = path(f.project(w.lonLat()));
            if (w.isClosed() || w.kind().equals("coastline")) {
                p.closePath();
                g.setColor(WATER);
                g.fill(p);
            } else {
                g.setColor(WATER);
                g.setStroke(new BasicStroke(2.5f, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
                g.draw(p);
            }
        }
    }

    private static void paintStreets(Graphics2D g, Frame f, List<Way> streets) {
        StreetClass[] order = StreetClass.values();
        // Paths first, then casings and fills of the roads from the least to the most important.
        for (Way w : streets) {
            if (StreetClass.of(w.kind()) != StreetClass.PATH) continue;
            g.setColor(PATH);
            g.setStroke(new BasicStroke(1.3f, BasicStroke.CAP_BUTT, BasicStroke.JOIN_ROUND, 1f,
                    new float[] {4f, 3f}, 0f));
            g.draw(path(f.project(w.lonLat())));
        }
        for (boolean casing : new boolean[] {true, false}) {
            for (int ci = order.length - 2; ci >= 0; ci--) {
                StreetClass cls = order[ci];
                float width = (float) (cls.widthMetres * f.scale());
                for (Way w : streets) {
                    if (StreetClass.of(w.kind()) != cls) continue;
                    g.setColor(casing ? CASING
                                      : cls.ordinal() <= StreetClass.SECONDARY.ordinal() ? MAIN_ROAD
                                                                                         : ROAD);
                    g.setStroke(new BasicStroke(casing ? width + 2f : width, BasicStroke.CAP_ROUND,
                            BasicStroke.JOIN_ROUND));
                    g.draw(path(f.project(w.lonLat())));
                }
            }
        }
    }

    // Each glyph at its arc length along the path, turned to the path's direction there, centred
    // on the street's middle line.
    private static void paintAlong(Graphics2D g, StreetName s) {
        Font font = s.cls().font;
        GlyphVector gv = font.createGlyphVector(LabelStyle.RENDER_CONTEXT, s.name());
        LineMetrics lm = font.getLineMetrics(s.name(), LabelStyle.RENDER_CONTEXT);
        double textWidth = gv.getLogicalBounds().getWidth();
        double pathLen = StreetLabels.length(s.path());
        double lead = (pathLen - textWidth) / 2;
        double drop = (lm.getAscent() - lm.getDescent()) / 2;
        Path2D.Double all = new Path2D.Double();
        for (int i = 0; i < gv.getNumGlyphs(); i++) {
            double gx = gv.getGlyphPosition(i).getX();
            double adv = gv.getGlyphMetrics(i).getAdvance();
            double[] at = pointAt(s.path(), lead + gx + adv / 2);
            AffineTransform t = AffineTransform.getTranslateInstance(at[0], at[1]);
            t.rotate(at[2]);
            t.translate(-(gx + adv / 2), drop);
            all.append(t.createTransformedShape(gv.getGlyphOutline(i)), false);
        }
        g.setColor(new Color(255, 255, 255, 230));
        g.setStroke(new BasicStroke(2.6f, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(all);
        g.setColor(TEXT);
        g.fill(all);
    }

    /** The point at arc length d along a polyline, and the direction there in radians. */
    static double[] pointAt(double[] pl, double d) {
        double at = 0;
        for (int i = 2; i + 1 < pl.length; i += 2) {
            double dx = pl[i] - pl[i - 2];
            double dy = pl[i + 1] - pl[i - 1];
            double seg = Math.hypot(dx, dy);
            if (seg == 0) continue;
            if (at + seg >= d || i + 2 >= pl.length) {
                double t = (d - at) / seg;
                return new double[] {pl[i - 2] + t * dx, pl[i - 1] + t * dy, Math.atan2(dy, dx)};
            }
            at += seg;
        }
        return new double[] {pl[0], pl[1], 0};
    }

    private static void paintPoi(Graphics2D g, PoiLabel p, int k) {
        double r = ICON_RADIUS - 0.5;
        Ellipse2D icon = new Ellipse2D.Double(p.px() + 0.5 - r, p.py() + 0.5 - r, 2 * r, 2 * r);
        g.setColor(Color.WHITE);
        g.setStroke(new BasicStroke(1.5f));
        g.draw(icon);
        g.setColor(p.group().color);
        g.fill(icon);
        g.setColor(Color.WHITE);
        g.setFont(ICON_FONT);
        double lw = ICON_FONT.getStringBounds(p.group().letter, LabelStyle.RENDER_CONTEXT).getWidth();
        g.drawString(p.group().letter, (float) (p.px() + 0.5 - lw / 2), p.py() + 4f);

        Candidates c = p.candidates();
        LineMetrics lm = POI_FONT.getLineMetrics(p.poi().name(), LabelStyle.RENDER_CONTEXT);
        GlyphVector gv = POI_FONT.createGlyphVector(LabelStyle.RENDER_CONTEXT, p.poi().name());
        Shape text = gv.getOutline(c.left(k) + 1f, c.top(k) + 1f + lm.getAscent());
        g.setColor(new Color(255, 255, 255, 220));
        g.setStroke(new BasicStroke(2.4f, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        g.draw(text);
        g.setColor(p.group().color.darker());
        g.fill(text);
    }

    private static void paintPanels(Graphics2D g, Frame f) {
        int[] a = attributionBox(f);
        g.setColor(new Color(255, 255, 255, 215));
        g.fillRect(a[0], a[1], a[2] - a[0] + 1, a[3] - a[1] + 1);
        g.setColor(new Color(0x404040));
        g.setFont(PANEL_FONT);
        g.drawString(ATTRIBUTION, a[0] + 6, f.height() - 7);
        int[] t = titleBox(f);
        g.setColor(new Color(255, 255, 255, 225));
        g.fillRect(t[0], t[1], t[2] - t[0] + 1, t[3] - t[1] + 1);
        g.setColor(new Color(0x202020));
        g.setFont(TITLE_FONT);
        g.drawString(TITLE, 10, 24);
    }

    private static Path2D.Double path(double[] xy) {
        Path2D.Double p = new Path2D.Double();
        p.moveTo(xy[0], xy[1]);
        for (int i = 2; i + 1 < xy.length; i += 2) p.lineTo(xy[i], xy[i + 1]);
        return p;
    }
}
