package com.tavrint.demo;

/**
 * Equirectangular projection of a lon/lat window onto a canvas of pixels, x to the right and y
 * downwards.
 *
 * <p>Longitudes are scaled by the cosine of the window's middle latitude, so that shapes keep their
 * proportions there. The window is widened about its centre along the axis that has room to spare
 * so that one scale serves both axes, the way the placement library fits a map extent to its
 * device rectangle.
 *
 * <p>{@link #webMercator} gives instead a window of a tiled web Mercator zoom level.
 */
public final class Projection {
    private final int width;
    private final int height;
    private final double kx;
    private final double centreX;
    private final double centreY;
    private final double unitsPerPixel;
    // Whether y follows the Mercator northing of the latitude instead of the latitude itself.
    private final boolean mercator;

    public Projection(int width, int height, double lonMin, double latMin, double lonMax,
            double latMax) {
        if (width <= 0 || height <= 0) throw new IllegalArgumentException("empty canvas");
        if (!(lonMax > lonMin) || !(latMax > latMin)) {
            throw new IllegalArgumentException("empty lon/lat window");
        }
        this.width = width;
        this.height = height;
        this.kx = Math.cos(Math.toRadians((latMin + latMax) / 2));
        this.centreX = (lonMin + lonMax) / 2 * kx;
        this.centreY = (latMin + latMax) / 2;
        this.unitsPerPixel =
                Math.max((lonMax - lonMin) * kx / width, (latMax - latMin) / height);
        this.mercator = false;
    }

    private Projection(int zoom, long left, long top, int width, int height) {
        this.width = width;
        this.height = height;
        this.kx = 1;
        this.unitsPerPixel = 360.0 / (256L << zoom);
        this.centreX = -180 + (left + width / 2.0) * unitsPerPixel;
        this.centreY = 180 - (top + height / 2.0) * unitsPerPixel;
        this.mercator = true;
    }

    /**
     * The canvas of width x height pixels whose top left pixel is (left, top) of the web Mercator
     * world at the zoom level: 256 x 2^zoom pixels a side, (0, 0) at 180 degrees west and the
     * latitude whose northing is 180 degrees (about 85.05 north).
     */
    public static Projection webMercator(int zoom, long left, long top, int width, int height) {
        if (width <= 0 || height <= 0) throw new IllegalArgumentException("empty canvas");
        if (zoom < 0 || zoom > 30) throw new IllegalArgumentException("zoom out of range");
        return new Projection(zoom, left, top, width, height);
    }

    public int width() {
        return width;
    }

    public int height() {
        return height;
    }

    public double x(double lon) {
        return (lon * kx - centreX) / unitsPerPixel + width / 2.0;
    }

    public double y(double lat) {
        double northing = mercator
                ? Math.toDegrees(Math.log(Math.tan(Math.PI / 4 + Math.toRadians(lat) / 2)))
                : lat;
        return (centreY - northing) / unitsPerPixel + height / 2.0;
    }

    /** The fitted window in projected units: west, south, east, north. */
    public double[] projectedExtent() {
        double hw = width * unitsPerPixel / 2;
        double hh = height * unitsPerPixel / 2;
        return new double[] {centreX - hw, centreY - hh, centreX + hw, centreY + hh};
    }

    public boolean isOnCanvas(double lon, double lat) {
        double px = x(lon);
        double py = y(lat);
        return px >= 0 && py >= 0 && px < width && py < height;
    }

    /** Projects interleaved lon, lat values to interleaved pixel values, rounded to the nearest. */
    public int[] toPixels(double[] lonLat) {
        int[] xy = new int[lonLat.length];
        for (int i = 0; i + 1 < lonLat.length; i += 2) {
            xy[i] = clampToInt(x(lonLat[i]));
            xy[i + 1] = clampToInt(y(lonLat[i + 1]));
        }
        return xy;
    }

    // Vertices far off the canvas are pulled in to 2^22 pixels, so that the library's stroke
    // arithmetic in 1/256 pixel stays inside 32 bits; only segments far outside the canvas bend.
    private static int clampToInt(double v) {
        final double limit = 1 << 22;
        return (int) Math.round(Math.max(-limit, Math.min(limit, v)));
    }
}
