package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import org.junit.jupiter.api.Test;

class ProjectionTest {
    @Test
    void windowCentreIsCanvasCentreNorthIsUpAndOneScaleServesBothAxes() {
        Projection p = new Projection(200, 100, 10, 40, 30, 50);
        assertEquals(100.0, p.x(20), 1e-9);
        assertEquals(50.0, p.y(45), 1e-9);
        assertTrue(p.y(49) < p.y(41));
        // At 60 degrees a degree of longitude is half a degree of latitude.
        Projection north = new Projection(1000, 1000, 0, 55, 10, 65);
        assertEquals(0.5, (north.x(1) - north.x(0)) / (north.y(59) - north.y(60)), 1e-9);
    }

    @Test
    void windowIsWidenedAlongTheAxisWithRoomToSpare() {
        // Twice as wide as high on a square canvas: the height is widened about the centre.
        Projection p = new Projection(400, 400, -20, -5, 20, 5);
        assertArrayEquals(new double[] {0, 400, 150, 250},
                new double[] {p.x(-20), p.x(20), p.y(5), p.y(-5)}, 1e-9);
        assertArrayEquals(new double[] {-20, -20, 20, 20}, p.projectedExtent(), 1e-9);
    }

    @Test
    void onCanvasIsHalfOpenPixelsRoundAndFarVerticesClamp() {
        Projection p = new Projection(100, 100, 0, -10, 20, 10);
        assertTrue(p.isOnCanvas(0, 0) && p.isOnCanvas(10, 10), "half-open window");
        assertFalse(p.isOnCanvas(20, 0) || p.isOnCanvas(10, -10), "half-open window");
        assertArrayEquals(new int[] {50, 50, 53, 48}, p.toPixels(new double[] {10, 0, 10.6, 0.4}));
        int[] far = new Projection(100, 100, 0, 0, 1e-6, 1e-6).toPixels(new double[] {180, -80});
        assertArrayEquals(new int[] {1 << 22, 1 << 22}, far);
        assertThrows(IllegalArgumentException.class, () -> new Projection(0, 10, 0, 0, 1, 1));
        assertThrows(IllegalArgumentException.class, () -> new Projection(10, 10, 1, 0, 1, 1));
        assertThrows(IllegalArgumentException.class,
                () -> new Projection(10, 10, 0, Double.NaN, 1, 1));
    }
}
