package com.tavrint.demo;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/** Footprint shapes in pixel coordinates, as interleaved x, y values for the placement library. */
public final class Footprints {
    private Footprints() {}

    /**
     * A ring around the cells left..right, top..bottom (inclusive): cell (x, y) is the unit square
     * from (x, y) to (x + 1, y + 1), so the ring runs along the outer edges of the corner cells.
     */
    public static int[] rectangleRing(int left, int top, int right, int bottom) {
        return new int[] {left, top, right + 1, top, right + 1, bottom + 1, left, bottom + 1};
    }

    /** An octagon around the pixel (cx, cy) reaching radius pixels out from the pixel's edges. */
    public static int[] octagonRing(int cx, int cy, int radius) {
        int r = Math.max(1, radius);
        int s = Math.max(1, (int) Math.round(r * 0.4142));
        int l = cx - r;
        int t = cy - r;
        int rr = cx + 1 + r;
        int b = cy + 1 + r;
        int mx0 = cx - s + 1;
        int mx1 = cx + s;
        int my0 = cy - s + 1;
        int my1 = cy + s;
        return new int[] {mx0, t, mx1, t, rr, my0, rr, my1, mx1, b, mx0, b, l, my1, l, my0};
    }

    /**
     * Splits a polyline of interleaved pixel values into pieces whose bounding boxes are at most
     * maxSpan pixels wide and high (a single longer segment makes a piece of its own). Consecutive
     * pieces share their end vertex, so together they draw the whole line; repeated vertices are
     * dropped first, since the library cannot stroke a segment of length zero.
     */
    public static List<int[]> splitPolyline(int[] xy, int maxSpan) {
        int[] pts = dropRepeatedVertices(xy);
        List<int[]> pieces = new ArrayList<>();
        int n = pts.length / 2;
        if (n < 2) return pieces;
        int start = 0;
        int minX = pts[0];
        int maxX = pts[0];
        int minY = pts[1];
        int maxY = pts[1];
        for (int i = 1; i < n; i++) {
            int x = pts[2 * i];
            int y = pts[2 * i + 1];
            int nMinX = Math.min(minX, x);
            int nMaxX = Math.max(maxX, x);
            int nMinY = Math.min(minY, y);
            int nMaxY = Math.max(maxY, y);
            boolean tooWide = (long) nMaxX - nMinX > maxSpan || (long) nMaxY - nMinY > maxSpan;
            if (tooWide && i - 1 > start) {
                pieces.add(slice(pts, start, i - 1));
                start = i - 1;
                nMinX = Math.min(pts[2 * start], x);
                nMaxX = Math.max(pts[2 * start], x);
                nMinY = Math.min(pts[2 * start + 1], y);
                nMaxY = Math.max(pts[2 * start + 1], y);
            }
            minX = nMinX;
            maxX = nMaxX;
            minY = nMinY;
            maxY = nMaxY;
        }
        pieces.add(slice(pts, start, n - 1));
        return pieces;
    }

    /** Whether the bounding box of the interleaved values meets the canvas 0..w-1 x 0..h-1. */
    public static boolean touchesCanvas(int[] xy, int canvasWidth, int canvasHeight) {
        int minX = Integer.MAX_VALUE;
        int maxX = Integer.MIN_VALUE;
        int minY = Integer.MAX_VALUE;
        int maxY = Integer.MIN_VALUE;
        for (int i = 0; i + 1 < xy.length; i += 2) {
            minX = Math.min(minX, xy[i]);
            maxX = Math.max(maxX, xy[i]);
            minY = Math.min(minY, xy[i + 1]);
            maxY = Math.max(maxY, xy[i + 1]);
        }
        return minX < canvasWidth && maxX >= 0 && minY < canvasHeight && maxY >= 0;
    }

    static int[] dropRepeatedVertices(int[] xy) {
        int[] out = new int[xy.length - xy.length % 2];
        int n = 0;
        for (int i = 0; i + 1 < xy.length; i += 2) {
            if (n > 0 && out[n - 2] == xy[i] && out[n - 1] == xy[i + 1]) continue;
            out[n++] = xy[i];
            out[n++] = xy[i + 1];
        }
        return Arrays.copyOf(out, n);
    }

    private static int[] slice(int[] pts, int firstVertex, int lastVertex) {
        return Arrays.copyOfRange(pts, 2 * firstVertex, 2 * lastVertex + 2);
    }

    /** The middle of a polyline's bounding box, x then y. */
    public static int[] middle(int[] xy) {
        int minX = Integer.MAX_VALUE, minY = Integer.MAX_VALUE;
        int maxX = Integer.MIN_VALUE, maxY = Integer.MIN_VALUE;
        for (int i = 0; i + 1 < xy.length; i += 2) {
            minX = Math.min(minX, xy[i]);
            maxX = Math.max(maxX, xy[i]);
            minY = Math.min(minY, xy[i + 1]);
            maxY = Math.max(maxY, xy[i + 1]);
        }
        return new int[] {(int) (((long) minX + maxX) / 2), (int) (((long) minY + maxY) / 2)};
    }
}
