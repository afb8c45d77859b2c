package com.tavrint.demo;

import com.tavrint.demo.Scene.Label;
import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Font;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.Shape;
import java.awt.font.TextLayout;
import java.awt.geom.AffineTransform;
import java.awt.geom.Ellipse2D;
import java.awt.geom.Path2D;
import java.awt.image.BufferedImage;
import java.util.List;

/** Draws a scene and the outcome of its pass: land, coastline, borders, dots and labels. */
public final class MapPainter {
    private static final Color SEA = new Color(0xB7D3E9);
    private static final Color LAND = new Color(0xF4F1E8);
    private static final Color COAST = new Color(0x6E9CC4);
    private static final Color BORDER = new Color(0xA488AE);
    private static final Color DOT = new Color(0x2F2F2F);
    private static final Color TEXT = new Color(0x1E1E1E);
    private static final Color HALO = new Color(255, 255, 255, 215);
    private static final Color REJECTED = new Color(200, 40, 40, 90);
    static final String ATTRIBUTION =
            "Cities: GeoNames (www.geonames.org), CC BY 4.0 \u00b7 Made with Natural Earth";
    static final String LEGEND = "Cities placed by population, each dot with its name; a city"
            + " whose name finds no room is left out";
    private static final Font ATTRIBUTION_FONT = new Font(Font.SANS_SERIF, Font.PLAIN, 12);

    private MapPainter() {}

    public static BufferedImage paint(Scene scene, int[] chosen, boolean showRejected) {
        Projection p = scene.projection();
        BufferedImage img = new BufferedImage(p.width(), p.height(), BufferedImage.TYPE_INT_RGB);
        Graphics2D g = img.createGraphics();
        try {
            paintGround(g, scene);
            List<Label> labels = scene.labels();
            if (showRejected) {
                for (int i = 0; i < labels.size(); i++) {
                    if (chosen[i] == LabelPass.REJECTED) paintRejected(g, labels.get(i));
                }
            }
            for (int i = 0; i < labels.size(); i++) {
                if (chosen[i] >= 0) paintDot(g, labels.get(i));
            }
            for (int i = 0; i < labels.size(); i++) {
                if (chosen[i] >= 0) paintLabel(g, labels.get(i), chosen[i]);
            }
            paintAttribution(g, p);
        } finally {
            g.dispose();
        }
        return img;
    }

    /**
     * Sets the rendering hints of the map and draws its ground in canvas pixels: sea, land,
     * coastline and borders. The transform of g may move the canvas, so that a window of it (a
     * tile) is drawn the same as on the whole picture.
     */
    static void paintGround(Graphics2D g, Scene scene) {
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.setRenderingHint(
                RenderingHints.KEY_TEXT_ANTIALIASING, RenderingHints.VALUE_TEXT_ANTIALIAS_ON);
        g.setRenderingHint(
                RenderingHints.KEY_FRACTIONALMETRICS, RenderingHints.VALUE_FRACTIONALMETRICS_ON);
        g.setRenderingHint(RenderingHints.KEY_STROKE_CONTROL, RenderingHints.VALUE_STROKE_PURE);
        Projection p = scene.projection();
        g.setColor(SEA);
        g.fillRect(0, 0, p.width(), p.height());
        paintLand(g, scene.coastLines());
        paintLines(g, scene.coastLines(), COAST, 0.9f);
        paintLines(g, scene.borderLines(), BORDER, 1.3f);
    }

    // Coast rings outline land and lakes alike: even-odd filling sorts them out. The few rings
    // cut open at the antimeridian are closed by a chord along it, which lies off any window
    // that does not reach the antimeridian.
    private static void paintLand(Graphics2D g, List<int[]> coast) {
        Path2D.Double land = new Path2D.Double(Path2D.WIND_EVEN_ODD);
        for (int[] xy : coast) {
            land.append(polyline(xy), false);
            land.closePath();
        }
        g.setColor(LAND);
        g.fill(land);
    }

    private static void paintLines(Graphics2D g, List<int[]> lines, Color color, float width) {
        g.setColor(color);
        g.setStroke(new BasicStroke(width, BasicStroke.CAP_ROUND, BasicStroke.JOIN_ROUND));
        for (int[] xy : lines) g.draw(polyline(xy));
    }

    private static Path2D.Double polyline(int[] xy) {
        Path2D.Double path = new Path2D.Double();
        path.moveTo(xy[0] + 0.5, xy[1] + 0.5);
        for (int i = 2; i + 1 < xy.length; i += 2) path.lineTo(xy[i] + 0.5, xy[i + 1] + 0.5);
        return path;
    }

    static void paintDot(Graphics2D g, Label l) {
        double r = l.style().dotRadius();
        Ellipse2D dot = new Ellipse2D.Double(l.px() + 0.5 - r, l.py() + 0.5 - r, 2 * r, 2 * r);
        g.setColor(DOT);
        g.fill(dot);
        g.setColor(Color.WHITE);
        g.setStroke(new BasicStroke(0.8f));
        g.draw(dot);
    }

    static void paintLabel(Graphics2D g, Label l, int candidate) {
        Shape text = textOutline(l, candidate);
        g.setColor(HALO);
        g.setStroke(new BasicStroke(2f * LabelStyle.HALO + 0.5f, BasicStroke.CAP_ROUND,
                BasicStroke.JOIN_ROUND));
        g.draw(text);
        g.setColor(TEXT);
        g.fill(text);
    }

    private static void paintRejected(Graphics2D g, Label l) {
        if (l.candidates().isEmpty()) return;
        g.setColor(REJECTED);
        g.fill(textOutline(l, 0));
    }

    private static Shape textOutline(Label l, int candidate) {
        String name = l.city().name();
        Candidates c = l.candidates();
        TextLayout layout = new TextLayout(name, l.style().font(), LabelStyle.RENDER_CONTEXT);
        AffineTransform at = AffineTransform.getTranslateInstance(
                c.left(candidate) + LabelStyle.HALO, c.top(candidate) + l.style().baseline(name));
        return layout.getOutline(at);
    }

    /**
     * Cells of the attribution's panel in the bottom right corner: left, top, right, bottom. The
     * pass keeps labels off it.
     */
    public static int[] attributionBox(int width, int height) {
        double w = Math.max(
                ATTRIBUTION_FONT.getStringBounds(ATTRIBUTION, LabelStyle.RENDER_CONTEXT).getWidth(),
                ATTRIBUTION_FONT.getStringBounds(LEGEND, LabelStyle.RENDER_CONTEXT).getWidth());
        return new int[] {width - (int) Math.ceil(w) - 12, height - 37, width - 1, height - 1};
    }

    private static void paintAttribution(Graphics2D g, Projection p) {
        int[] box = attributionBox(p.width(), p.height());
        g.setColor(new Color(255, 255, 255, 200));
        g.fillRect(box[0], box[1], box[2] - box[0] + 1, box[3] - box[1] + 1);
        g.setFont(ATTRIBUTION_FONT);
        g.setColor(new Color(0x303030));
        g.drawString(LEGEND, box[0] + 6, p.height() - 23);
        g.setColor(new Color(0x606060));
        g.drawString(ATTRIBUTION, box[0] + 6, p.height() - 7);
    }
}
