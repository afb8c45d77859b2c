package com.tavrint.demo;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * Geometry of names that run along streets: joining a street's pieces into chains, cutting the
 * stretch of a chain that a name covers, judging whether it is straight enough to be read, and
 * the footprint of cells that follows it. Polylines are interleaved x, y values in pixels.
 */
public final class StreetLabels {
    /** Largest bend, in degrees, at one vertex under a name. */
    static final double MAX_BEND = 30;
    /** Largest sum of bends, in degrees, under one name. */
    static final double MAX_TURNING = 50;

    private StreetLabels() {}

    /**
     * Joins polylines whose ends meet (within half a pixel) into longer chains, reversing pieces
     * where needed; pieces that meet nothing stay as they are. The longest chains come first.
     */
    public static List<double[]> chains(List<double[]> pieces) {
        List<double[]> open = new ArrayList<>(pieces);
        List<double[]> out = new ArrayList<>();
        while (!open.isEmpty()) {
            double[] chain = open.remove(open.size() - 1);
            boolean grown = true;
            while (grown) {
                grown = false;
                for (int i = 0; i < open.size(); i++) {
                    double[] p = open.get(i);
                    double[] joined = join(chain, p);
                    if (joined != null) {
                        chain = joined;
                        open.remove(i);
                        grown = true;
                        break;
                    }
                }
            }
            out.add(chain);
        }
        out.sort((a, b) -> Double.compare(length(b), length(a)));
        return out;
    }

    // a then b when an end of a meets an end of b, else null.
    private static double[] join(double[] a, double[] b) {
        if (meets(a, a.length - 2, b, 0)) return concat(a, b);
        if (meets(a, a.length - 2, b, b.length - 2)) return concat(a, reverse(b));
        if (meets(a, 0, b, b.length - 2)) return concat(b, a);
        if (meets(a, 0, b, 0)) return concat(reverse(b), a);
        return null;
    }

    private static boolean meets(double[] a, int i, double[] b, int j) {
        return Math.hypot(a[i] - b[j], a[i + 1] - b[j + 1]) <= 0.5;
    }

    // b's first point is a's last: it is written once.
    private static double[] concat(double[] a, double[] b) {
        double[] c = Arrays.copyOf(a, a.length + b.length - 2);
        System.arraycopy(b, 2, c, a.length, b.length - 2);
        return c;
    }

    public static double[] reverse(double[] pl) {
        double[] r = new double[pl.length];
        for (int i = 0; i < pl.length; i += 2) {
            r[pl.length - 2 - i] = pl[i];
            r[pl.length - 1 - i] = pl[i + 1];
        }
        return r;
    }

    public static double length(double[] pl) {
        double len = 0;
        for (int i = 2; i + 1 < pl.length; i += 2) {
            len += Math.hypot(pl[i] - pl[i - 2], pl[i + 1] - pl[i - 1]);
        }
        return len;
    }

    /**
     * The part of a polyline between the arc lengths from and to (0 <= from < to <= length): the
     * point at from, every vertex strictly between, the point at to.
     */
    public static double[] subPath(double[] pl, double from, double to) {
        List<Double> out = new ArrayList<>();
        double at = 0;
        boolean started = false;
        for (int i = 2; i + 1 < pl.length; i += 2) {
            double x0 = pl[i - 2];
            double y0 = pl[i - 1];
            double seg = Math.hypot(pl[i] - x0, pl[i + 1] - y0);
            double next = at + seg;
            if (!started && next >= from && seg > 0) {
                double t = (from - at) / seg;
                out.add(x0 + t * (pl[i] - x0));
                out.add(y0 + t * (pl[i + 1] - y0));
                started = true;
            }
            if (started) {
                if (next >= to) {
                    double t = seg > 0 ? (to - at) / seg : 0;
                    out.add(x0 + t * (pl[i] - x0));
                    out.add(y0 + t * (pl[i + 1] - y0));
                    break;
                }
                out.add(pl[i]);
                out.add(pl[i + 1]);
            }
            at = next;
        }
        double[] r = new double[out.size()];
        for (int i = 0; i < r.length; i++) r[i] = out.get(i);
        return r;
    }

    /** Whether a name can be read along the path: no sharp bend, little turning overall. */
    public static boolean readable(double[] path) {
        double total = 0;
        double prev = Double.NaN;
        for (int i = 2; i + 1 < path.length; i += 2) {
            double dx = path[i] - path[i - 2];
            double dy = path[i + 1] - path[i - 1];
            if (Math.hypot(dx, dy) < 1e-9) continue;
            double a = Math.toDegrees(Math.atan2(dy, dx));
            if (!Double.isNaN(prev)) {
                double bend = Math.abs(((a - prev) % 360 + 540) % 360 - 180);
                if (bend > MAX_BEND) return false;
                total += bend;
            }
            prev = a;
        }
        return total <= MAX_TURNING;
    }

    /** Within this many degrees of the vertical, a name reads bottom to top. */
    static final double NEAR_VERTICAL = 15;

    /**
     * The path turned so that the text along it reads left to right or, along a street within
     * {@link #NEAR_VERTICAL} degrees of the vertical, bottom to top: never upside down, and never
     * top to bottom. The direction is that from the first point to the last.
     */
    public static double[] upright(double[] path) {
        double dx = path[path.length - 2] - path[0];
        double dy = path[path.length - 1] - path[1];
        // Pixels run downwards: a direction up the picture has dy < 0.
        double fromVertical = Math.toDegrees(Math.atan2(Math.abs(dx), Math.abs(dy)));
        boolean reads = fromVertical <= NEAR_VERTICAL ? dy < 0 : dx > 0;
        return reads ? path : reverse(path);
    }

    /**
     * The footprint line of a name along the path: the vertices rounded to cells, repeated ones
     * dropped, as the library's line takes them. Stroked by the text's half-height, it covers the
     * band the letters take.
     */
    public static int[] footprint(double[] path) {
        int[] xy = new int[path.length];
        int n = 0;
        for (int i = 0; i + 1 < path.length; i += 2) {
            int x = (int) Math.round(path[i]);
            int y = (int) Math.round(path[i + 1]);
            if (n > 0 && xy[n - 2] == x && xy[n - 1] == y) continue;
            xy[n++] = x;
            xy[n++] = y;
        }
        return Arrays.copyOf(xy, n);
    }

    /**
     * Start positions to try for names of length w along a chain of length len, one group per
     * slot: the chain is cut into slots of at least w + repeat pixels, and in each slot the
     * positions run from the slot's middle outwards in steps of step pixels.
     */
    public static List<double[]> slots(double len, double w, double repeat, double step) {
        List<double[]> slots = new ArrayList<>();
        if (len < w) return slots;
        int n = Math.max(1, (int) Math.floor(len / (w + repeat)));
        double slotLen = len / n;
        for (int k = 0; k < n; k++) {
            double lo = k * slotLen;
            double hi = Math.min(len, (k + 1) * slotLen) - w;
            double mid = (lo + hi) / 2;
            List<Double> starts = new ArrayList<>();
            for (int j = 0; ; j++) {
                double d = ((j + 1) / 2) * step * (j % 2 == 1 ? 1 : -1);
                double s = mid + d;
                if (Math.abs(d) > (hi - lo) / 2 + 1e-9) break;
                if (s >= lo - 1e-9 && s <= hi + 1e-9) starts.add(s);
            }
            double[] a = new double[starts.size()];
            for (int i = 0; i < a.length; i++) a[i] = starts.get(i);
            slots.add(a);
        }
        return slots;
    }
}
