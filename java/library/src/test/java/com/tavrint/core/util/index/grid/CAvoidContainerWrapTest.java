package com.tavrint.core.util.index.grid;

import static com.tavrint.core.util.index.grid.CAvoidContainerWrap.*;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertTrue;

import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/** The natives on raw handles: results, null handles and the documented quirks. */
class CAvoidContainerWrapTest {
    private long c;

    @BeforeEach
    void create() {
        c = CreateAvoidContainer();
        assertNotEquals(0, c);
        AvoidContainerExtent(c, new int[] {0, 0, 100, 100}, new double[] {0, 0, 1000, 1000});
    }

    @AfterEach
    void destroy() {
        assertTrue(DestroyAvoidContainer(c));
    }

    /** An object covering the cells [x, x + size) x [y, y + size). */
    private long square(int x, int y, int size) {
        long obj = CreateAvoidObject(c);
        AvoidObject_AddRing(obj, new int[] {x, y, x + size, y, x + size, y + size, x, y + size});
        return obj;
    }

    private long placeAt(int x, int y, int size) {
        long obj = square(x, y, size);
        AddAvoidObject(c, obj);
        return obj;
    }

    @Test
    void nullHandlesDoNothing() {
        long obj = CreateAvoidObject(c);
        assertFalse(DestroyAvoidContainer(0));
        AvoidContainerExtent(0, new int[] {0, 0, 1, 1}, new double[] {0, 0, 1, 1});
        ResetAvoidContainer(0);
        assertEquals(0, CreateAvoidObject(0));
        DestroyAvoidObject(0);
        RecycleAvoidObject(0, obj);
        RecycleAvoidObject(c, 0);
        assertFalse(AddAvoidObject(0, obj) || AddAvoidObject(c, 0));
        assertFalse(AddAvoidObjectForce(0, obj) || AddAvoidObjectForce(c, 0));
        assertNull(AllPlacedObject(0));
        assertNull(AllUnPlacedObject(0));
        AvoidObject_Reset(0);
        assertEquals(0, AvoidObject_PlacedState(0));
        AvoidObject_SetID(0, 5);
        assertEquals(0, AvoidObject_GetID(0));
        AvoidObject_SetStringID(0, "x");
        assertNull(AvoidObject_GetStringID(0));
        assertNull(AvoidObject_Offset(0));
        AvoidObject_ClearOffset(0);
        AvoidObject_AddBox(0, 0, 0, 1, 1);
        AvoidObject_AddLines(0, new int[] {0, 0, 1, 1}, 1);
        AvoidObject_AddRing(0, new int[] {0, 0, 1, 0, 1, 1});
        AvoidObject_AddOffset(0, 1, 1);
        // The object was touched by none of them.
        assertEquals(0, AvoidObject_PlacedState(obj));
        assertNull(AllPlacedObject(c));
        DestroyAvoidObject(obj);
    }

    @Test
    void placedStatesAndResultListsInPlacementOrder() {
        assertNull(AllPlacedObject(c));
        assertNull(AllUnPlacedObject(c));
        long first = square(10, 10, 10), second = square(15, 15, 10);
        assertEquals(0, AvoidObject_PlacedState(first));
        assertTrue(AddAvoidObjectForce(c, first));
        assertEquals(1, AvoidObject_PlacedState(first));
        assertTrue(AddAvoidObject(c, second), "add returns true even when not placed");
        assertEquals(2, AvoidObject_PlacedState(second));
        long a = placeAt(50, 50, 5), b = placeAt(0, 0, 5);
        assertArrayEquals(new long[] {first, a, b}, AllPlacedObject(c));
        assertArrayEquals(new long[] {second}, AllUnPlacedObject(c));
    }

    @Test
    void offsetsAreTriedInOrderAndReportXTwice() {
        AddAvoidObjectForce(c, square(10, 10, 10));
        long cleared = square(10, 10, 10);
        AvoidObject_AddOffset(cleared, 30, 0);
        AvoidObject_ClearOffset(cleared);
        AddAvoidObject(c, cleared);
        assertEquals(2, AvoidObject_PlacedState(cleared));

        long tried = square(10, 10, 10);
        AvoidObject_AddOffset(tried, 5, 5); // still overlaps
        AvoidObject_AddOffset(tried, -10, 9); // touches only at the shared edge: free
        AvoidObject_AddOffset(tried, 40, 40);
        assertArrayEquals(new int[] {0, 0}, AvoidObject_Offset(tried));
        AddAvoidObject(c, tried);
        assertEquals(1, AvoidObject_PlacedState(tried));
        assertArrayEquals(new int[] {-10, -10}, AvoidObject_Offset(tried));
    }

    @Test
    void stringIdsRoundTripAndEmptyReadsAsNull() {
        long obj = CreateAvoidObject(c);
        assertNull(AvoidObject_GetStringID(obj));
        String text = "Zürich – 東京 \uD83D\uDDFA \u0000 end";
        AvoidObject_SetStringID(obj, text);
        assertEquals(text, AvoidObject_GetStringID(obj));
        AvoidObject_SetStringID(obj, "");
        assertNull(AvoidObject_GetStringID(obj));
        AvoidObject_SetStringID(obj, "kept");
        AvoidObject_SetStringID(obj, null);
        assertNull(AvoidObject_GetStringID(obj));
        DestroyAvoidObject(obj);
    }

    @Test
    void resetClearsIdAndFootprintButKeepsStringId() {
        long obj = square(10, 10, 10);
        AvoidObject_SetID(obj, Long.MIN_VALUE + 3);
        AvoidObject_SetStringID(obj, "name");
        assertEquals(Long.MIN_VALUE + 3, AvoidObject_GetID(obj));
        AvoidObject_Reset(obj);
        assertEquals(0, AvoidObject_GetID(obj));
        assertEquals("name", AvoidObject_GetStringID(obj));
        // The reset object has no footprint: it overlaps nothing.
        AddAvoidObjectForce(c, square(10, 10, 10));
        AddAvoidObject(c, obj);
        assertEquals(1, AvoidObject_PlacedState(obj));
    }

    @Test
    void boxesOfPlacedObjectsBlock() {
        long placed = square(0, 0, 2);
        AvoidObject_AddBox(placed, 40, 10, 49, 19);
        AddAvoidObjectForce(c, placed);
        assertEquals(2, AvoidObject_PlacedState(placeAt(45, 15, 2)), "inside the box");
        assertEquals(1, AvoidObject_PlacedState(placeAt(15, 45, 2)), "box is not transposed");
    }

    @Test
    void shortDeviceRectLeavesTheCanvasAndNullArraysAreSafe() {
        AvoidContainerExtent(c, new int[] {0, 0, 10}, new double[] {0, 0, 50, 50});
        AvoidContainerExtent(c, null, null);
        // On a 10 x 10 canvas these squares would be clipped away and could not collide.
        AddAvoidObjectForce(c, square(60, 60, 10));
        assertEquals(2, AvoidObject_PlacedState(placeAt(65, 65, 10)));

        long obj = CreateAvoidObject(c);
        AvoidObject_AddLines(obj, null, 3);
        AvoidObject_AddRing(obj, null);
        AvoidObject_AddLines(obj, new int[] {20, 20, 40, 20, 99}, 1);
        AddAvoidObject(c, obj);
        long crossing = CreateAvoidObject(c);
        AvoidObject_AddRing(crossing, new int[] {30, 10, 31, 10, 31, 30, 30, 30, 7});
        AddAvoidObject(c, crossing);
        assertEquals(2, AvoidObject_PlacedState(crossing), "both odd-length shapes were drawn");

        AvoidContainerExtent(c, new int[] {0, 0, 10, 10}, null);
        assertEquals(1, AvoidObject_PlacedState(placeAt(60, 60, 10)), "10 x 10 drops the cells");
    }

    @Test
    void pooledHandlesComeBackResetInFifoOrder() {
        long p1 = square(0, 0, 5), p2 = square(20, 0, 5), u1 = square(1, 1, 5);
        long spare = CreateAvoidObject(c);
        AvoidObject_SetID(p1, 11);
        for (long obj : new long[] {p1, p2, u1}) {
            AddAvoidObject(c, obj);
        }
        RecycleAvoidObject(c, p2);
        RecycleAvoidObject(c, p2); // no longer listed: ignored
        RecycleAvoidObject(c, spare);
        long again = placeAt(20, 0, 5);
        assertEquals(p2, again, "the oldest recycled object is handed out first");
        assertEquals(1, AvoidObject_PlacedState(again), "recycled p2 stopped blocking");
        ResetAvoidContainer(c);
        assertNull(AllPlacedObject(c));
        assertNull(AllUnPlacedObject(c));
        long[] reused = new long[4];
        for (int i = 0; i < reused.length; i++) {
            reused[i] = CreateAvoidObject(c);
        }
        assertArrayEquals(new long[] {spare, p1, p2, u1}, reused);
        assertEquals(0, AvoidObject_GetID(p1));
        assertEquals(0, AvoidObject_PlacedState(u1));
        long fresh = CreateAvoidObject(c);
        for (long obj : reused) {
            assertNotEquals(obj, fresh, "an empty pool makes a new object");
            RecycleAvoidObject(c, obj);
        }
        DestroyAvoidObject(fresh);
    }
}
