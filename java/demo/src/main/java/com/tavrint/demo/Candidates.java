package com.tavrint.demo;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;

/**
 * The candidate positions of one label around its point, as the placement library sees them: a
 * base rectangle (the first candidate, whose footprint is rasterised) and the offsets of every
 * candidate from it, the first being (0, 0).
 *
 * <p>The library reports only the x component of the offset at which an object was placed, so the
 * x offsets of one label's candidates are made distinct: a candidate whose natural x offset is
 * already taken is nudged sideways by a pixel or a few. Candidates that do not fit wholly inside
 * the canvas are left out, so that no label is drawn cut off at the border.
 */
public final class Candidates {
    /** The positions, in the order they are tried. */
    public enum Position {
        RIGHT, LEFT, ABOVE, BELOW, UPPER_RIGHT, LOWER_RIGHT, UPPER_LEFT, LOWER_LEFT
    }

    /** The largest sideways nudge tried to make an x offset unique. */
    static final int MAX_NUDGE = 8;

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
        Set<Integer> usedDx = new HashSet<>();
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
            c.tryAdd(p, (int) Math.round(left), (int) Math.round(top), usedDx, canvasWidth,
                    canvasHeight);
        }
        return c;
    }

    // Nudges 0, +1, -1, +2, -2, ... until the x offset is new and the rectangle fits the canvas.
    private void tryAdd(Position p, int left, int top, Set<Integer> usedDx, int canvasWidth,
            int canvasHeight) {
        if (top < 0 || top + height > canvasHeight) return;
        for (int k = 0; k <= 2 * MAX_NUDGE; k++) {
            int nudge = (k % 2 == 1) ? (k + 1) / 2 : -(k / 2);
            int l = left + nudge;
            if (l < 0 || l + width > canvasWidth) continue;
            int dx = topLefts.isEmpty() ? 0 : l - topLefts.get(0)[0];
            if (!usedDx.add(dx)) continue;
            positions.add(p);
            topLefts.add(new int[] {l, top});
            return;
        }
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

    /** The candidate at position p, or -1 when p does not fit the canvas. */
    public int indexOf(Position p) {
        return positions.indexOf(p);
    }

    /** The candidate whose x offset is the reported one, or -1 when none has it. */
    public int indexOfDx(int reportedDx) {
        for (int i = 0; i < positions.size(); i++) {
            if (dx(i) == reportedDx) return i;
        }
        return -1;
    }
}
