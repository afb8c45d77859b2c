package com.tavrint.demo;

import java.awt.Font;
import java.awt.GraphicsEnvironment;
import java.awt.font.FontRenderContext;
import java.awt.font.LineMetrics;
import java.awt.geom.Rectangle2D;
import java.util.Arrays;

/**
 * The look of a city by its population: font, dot radius, and the pixel box its name needs.
 *
 * <p>Text is measured with the same font and rendering context that the painter draws with, so a
 * label's box fits the text on the picture. The box is padded by {@link #HALO} pixels on every
 * side for the light halo drawn around the letters.
 */
public enum LabelStyle {
    CAPITAL_SIZE(1_000_000, Font.BOLD, 17f, 4, 4.0),
    LARGE(250_000, Font.BOLD, 14f, 3, 2.5),
    MEDIUM(50_000, Font.PLAIN, 12f, 2, 1.25),
    SMALL(0, Font.PLAIN, 10.5f, 2, 1.0);

    /** The font family of every label: DejaVu Sans when installed, else the JDK's sans. */
    public static final String FAMILY = Family.NAME;

    /** Padding around the text, in pixels, taken by the halo. */
    public static final int HALO = 1;

    /** Antialiased text with fractional metrics, as painted. */
    public static final FontRenderContext RENDER_CONTEXT = new FontRenderContext(null, true, true);

    private final long minPopulation;
    private final Font font;
    private final int dotRadius;
    private final double roomFactor;

    LabelStyle(long minPopulation, int fontStyle, float size, int dotRadius, double roomFactor) {
        this.minPopulation = minPopulation;
        this.font = new Font(Family.NAME, fontStyle, 1).deriveFont(size);
        this.dotRadius = dotRadius;
        this.roomFactor = roomFactor;
    }

    public static LabelStyle forPopulation(long population) {
        for (LabelStyle s : values()) {
            if (population >= s.minPopulation) return s;
        }
        return SMALL;
    }

    public Font font() {
        return font;
    }

    public int dotRadius() {
        return dotRadius;
    }

    /** How many times the base spacing a city of this style keeps free of smaller cities. */
    public double roomFactor() {
        return roomFactor;
    }

    /** Distance from the city's pixel to the nearest edge of a label box. */
    public double clearance() {
        return dotRadius + 2.5;
    }

    /** Width and height in whole pixels of the padded box of the text. */
    public int[] measure(String text) {
        Rectangle2D bounds = font.getStringBounds(text, RENDER_CONTEXT);
        LineMetrics lm = font.getLineMetrics(text, RENDER_CONTEXT);
        int w = (int) Math.ceil(bounds.getWidth()) + 2 * HALO;
        int h = (int) Math.ceil(lm.getAscent() + lm.getDescent()) + 2 * HALO;
        return new int[] {w, h};
    }

    /** Distance from the top of the padded box down to the text's baseline. */
    public float baseline(String text) {
        return HALO + font.getLineMetrics(text, RENDER_CONTEXT).getAscent();
    }

    // DejaVu Sans when installed (it covers Latin, Greek and Cyrillic names), else the JDK's sans.
    // A holder class, since enum constants are built before the enum's own static fields.
    private static final class Family {
        static final String NAME = Arrays.asList(
                GraphicsEnvironment.getLocalGraphicsEnvironment().getAvailableFontFamilyNames())
                .contains("DejaVu Sans") ? "DejaVu Sans" : Font.SANS_SERIF;
    }
}
