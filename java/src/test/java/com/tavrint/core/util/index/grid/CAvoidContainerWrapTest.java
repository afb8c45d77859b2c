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
        assertFalse(AddAvoidObject(0, obj));
        assertFalse(AddAvoidObject(c, 0));
        assertFalse(AddAvoidObjectForce(0, obj));
        assertFalse(AddAvoidObjectForce(c, 0));
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
    void placedStatesFollowAddsAndAddAlwaysReturnsTrue() {
        long first = square(10, 10, 10);
        long second = square(15, 15, 10);
        assertEquals(0, AvoidObject_PlacedState(first));
        assertTrue(AddAvoidObjectForce(c, first));
        assertEquals(1, AvoidObject_PlacedState(first));
        assertTrue(AddAvoidObject(c, second));
        assertEquals(2, AvoidObject_PlacedState(second));
        assertArrayEquals(new long[] {second}, AllUnPlacedObject(c));
    }

    @Test
    void resultListsAreNullWhenEmptyAndKeepPlacementOrder() {
        assertNull(AllPlacedObject(c));
        assertNull(AllUnPlacedObject(c));
        long a = square(0, 0, 5), b = square(50, 50, 5), d = square(20, 0, 5);
        for (long obj : new long[] {a, b, d}) {
            assertTrue(AddAvoidObject(c, obj));
        }
        assertArrayEquals(new long[] {a, b, d}, AllPlacedObject(c));
        assertNull(AllUnPlacedObject(c));
    }

    @Test
    void offsetReportsXTwice() {
        AddAvoidObjectForce(c, square(10, 10, 5));
        long moved = square(10, 10, 5);
        AvoidObject_AddOffset(moved, 7, 9);
        assertArrayEquals(new int[] {0, 0}, AvoidObject_Offset(moved));
        AddAvoidObject(c, moved);
        assertEquals(1, AvoidObject_PlacedState(moved));
        assertArrayEquals(new int[] {7, 7}, AvoidObject_Offset(moved));
    }

    @Test
    void offsetsAreTriedInOrderAndClearOffsetLeavesOnlyTheOrigin() {
        AddAvoidObjectForce(c, square(10, 10, 10));
        long cleared = square(10, 10, 10);
        AvoidObject_AddOffset(cleared, 30, 0);
        AvoidObject_ClearOffset(cleared);
        AddAvoidObject(c, cleared);
        assertEquals(2, AvoidObject_PlacedState(cleared));

        long tried = square(10, 10, 10);
        AvoidObject_AddOffset(tried, 5, 5); // still overlaps
        AvoidObject_AddOffset(tried, -10, 0); // touches only at the shared edge: free
        AvoidObject_AddOffset(tried, 40, 40);
        AddAvoidObject(c, tried);
        assertArrayEquals(new int[] {-10, -10}, AvoidObject_Offset(tried));
    }

    @Test
    void stringIdsRoundTripAndEmptyReadsAsNull() {
        long obj = CreateAvoidObject(c);
        assertNull(AvoidObject_GetStringID(obj));
        AvoidObject_SetStringID(obj, "ab");
        assertEquals("ab", AvoidObject_GetStringID(obj));
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
    void idsAndResetOfAnObject() {
        long obj = square(10, 10, 10);
        AvoidObject_SetID(obj, Long.MIN_VALUE + 3);
        AvoidObject_SetStringID(obj, "name");
        AvoidObject_AddOffset(obj, 1, 1);
        assertEquals(Long.MIN_VALUE + 3, AvoidObject_GetID(obj));
        AvoidObject_Reset(obj);
        assertEquals(0, AvoidObject_GetID(obj));
        assertEquals("name", AvoidObject_GetStringID(obj), "reset keeps the string ID");
        // The reset object has no footprint: it overlaps nothing and blocks nothing.
        AddAvoidObjectForce(c, square(10, 10, 10));
        AddAvoidObject(c, obj);
        assertEquals(1, AvoidObject_PlacedState(obj));
    }

    @Test
    void boxesOfPlacedObjectsBlock() {
        long placed = square(0, 0, 2);
        AvoidObject_AddBox(placed, 40, 10, 49, 19);
        AddAvoidObjectForce(c, placed);
        long onBox = square(45, 15, 2); // inside the placed box, not at (15, 45)
        long mirrored = square(15, 45, 2);
        AddAvoidObject(c, onBox);
        AddAvoidObject(c, mirrored);
        assertEquals(2, AvoidObject_PlacedState(onBox));
        assertEquals(1, AvoidObject_PlacedState(mirrored));
    }

    @Test
    void shortDeviceRectLeavesTheCanvasAsItWas() {
        AvoidContainerExtent(c, new int[] {0, 0, 10}, new double[] {0, 0, 50, 50});
        // On a 10 x 10 canvas these squares would be clipped away and could not collide.
        AddAvoidObjectForce(c, square(60, 60, 10));
        long late = square(65, 65, 10);
        AddAvoidObject(c, late);
        assertEquals(2, AvoidObject_PlacedState(late));

        AvoidContainerExtent(c, new int[] {0, 0, 10, 10}, null);
        long clipped = square(60, 60, 10);
        AddAvoidObject(c, clipped);
        assertEquals(1, AvoidObject_PlacedState(clipped), "a 10 x 10 canvas drops its cells");
    }

    @Test
    void nullAndOddCoordinateArraysAreSafe() {
        long obj = CreateAvoidObject(c);
        AvoidObject_AddLines(obj, null, 3);
        AvoidObject_AddRing(obj, null);
        AvoidContainerExtent(c, null, null);
        AvoidObject_AddLines(obj, new int[] {20, 20, 40, 20, 99}, 1);
        AddAvoidObject(c, obj);
        long crossing = CreateAvoidObject(c);
        AvoidObject_AddRing(crossing, new int[] {30, 10, 31, 10, 31, 30, 30, 30, 7});
        AddAvoidObject(c, crossing);
        assertEquals(2, AvoidObject_PlacedState(crossing), "both shapes were drawn");
    }

    @Test
    void pooledHandlesComeBackResetInFifoOrder() {
        long p1 = square(0, 0, 5), p2 = square(20, 0, 5), u1 = square(1, 1, 5);
        long spare = CreateAvoidObject(c);
        AvoidObject_SetID(p1, 11);
        for (long obj : new long[] {p1, p2, u1}) {
            AddAvoidObject(c, obj);
        }
        RecycleAvoidObject(c, spare);
        ResetAvoidContainer(c);
        assertNull(AllPlacedObject(c));
        assertNull(AllUnPlacedObject(c));
        long[] reused = {CreateAvoidObject(c), CreateAvoidObject(c), CreateAvoidObject(c),
            CreateAvoidObject(c)};
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

    @Test
    void recycledPlacedObjectStopsBlocking() {
        long blocker = square(10, 10, 10);
        AddAvoidObject(c, blocker);
        RecycleAvoidObject(c, blocker);
        RecycleAvoidObject(c, blocker); // no longer listed: ignored
        assertNull(AllPlacedObject(c));
        long next = square(10, 10, 10);
        assertEquals(blocker, next, "the pool hands the recycled object out again");
        AddAvoidObject(c, next);
        assertEquals(1, AvoidObject_PlacedState(next));
        long fresh = CreateAvoidObject(c);
        assertNotEquals(blocker, fresh, "pooled once only");
        DestroyAvoidObject(fresh);
    }
}
