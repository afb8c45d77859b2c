package com.tavrint.demo;

import java.util.ArrayList;
import java.util.List;

/**
 * The candidate positions of one label around its point, as the placement library sees them: a
 * base rectangle (the first candidate, whose footprint is rasterised) and the offsets of every
 * candidate from it, the first being (0, 0).
 *
 * <p>Candidates that do not fit wholly inside the canvas are left out, so that no label is drawn
 * cut off at the border (and the first, whose footprint is built, lies on the canvas, so that its
 * offsets may be tried). The candidate the library chose is {@link
 * com.tavrint.core.util.index.grid.AvoidObject#candidate()}, an index into these.
 */
public final class Candidates {
    /** The positions, in the order they are tried. */
    public enum Position {
        RIGHT, LEFT, ABOVE, BELOW, UPPER_RIGHT, LOWER_RIGHT, UPPER_LEFT, LOWER_LEFT
    }

    private final int width;
    private final int height;
    private final List<Position> positions = new ArrayList<>();
    private final List<int[]> topLefts = new ArrayList<>();

    private Candidates(int width, int height) {
        this.width = width;
        this.height = height;
    }

    /**
     * Candidates of a label of width x height pixels around the point (px, py) whose symbol has
     * the given clearance radius, on a canvas of canvasWidth x canvasHeight pixels.
     */
    public static Candidates around(double px, double py, double clearance, int width, int height,
            int canvasWidth, int canvasHeight) {
        Candidates c = new Candidates(width, height);
        double diag = clearance * Math.sqrt(0.5);
        for (Position p : Position.values()) {
            double left;
            double top;
            switch (p) {
                case RIGHT -> { left = px + clearance; top = py - height / 2.0; }
                case LEFT -> { left = px - clearance - width; top = py - height / 2.0; }
                case ABOVE -> { left = px - width / 2.0; top = py - clearance - height; }
                case BELOW -> { left = px - width / 2.0; top = py + clearance; }
                case UPPER_RIGHT -> { left = px + diag; top = py - diag - height; }
                case LOWER_RIGHT -> { left = px + diag; top = py + diag; }
                case UPPER_LEFT -> { left = px - diag - width; top = py - diag - height; }
                default -> { left = px - diag - width; top = py + diag; }
            }
            c.tryAdd(p, (int) Math.round(left), (int) Math.round(top), canvasWidth, canvasHeight);
        }
        return c;
    }

    private void tryAdd(Position p, int left, int top, int canvasWidth, int canvasHeight) {
        if (top < 0 || top + height > canvasHeight || left < 0 || left + width > canvasWidth) {
            return;
        }
        positions.add(p);
        topLefts.add(new int[] {left, top});
    }

    public boolean isEmpty() {
        return positions.isEmpty();
    }

    public int size() {
        return positions.size();
    }

    public int width() {
        return width;
    }

    public int height() {
        return height;
    }

    public Position position(int i) {
        return positions.get(i);
    }

    /** Left and top pixel of candidate i's rectangle. */
    public int left(int i) {
        return topLefts.get(i)[0];
    }

    public int top(int i) {
        return topLefts.get(i)[1];
    }

    /** Offset of candidate i from the first; (0, 0) for the first. */
    public int dx(int i) {
        return left(i) - left(0);
    }

    public int dy(int i) {
        return top(i) - top(0);
    }
}
