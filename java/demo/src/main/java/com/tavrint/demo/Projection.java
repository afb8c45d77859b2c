package com.tavrint.demo;

/**
 * Equirectangular projection of a lon/lat window onto a canvas of pixels, x to the right and y
 * downwards.
 *
 * <p>Longitudes are scaled by the cosine of the window's middle latitude, so that shapes keep their
 * proportions there. The window is widened about its centre along the axis that has room to spare
 * so that one scale serves both axes, the way the placement library fits a map extent to its
 * device rectangle.
 */
public final class Projection {
    private final int width;
    private final int height;
    private final double kx;
    private final double centreX;
    private final double centreY;
    private final double unitsPerPixel;

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
        return (centreY - lat) / unitsPerPixel + height / 2.0;
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
