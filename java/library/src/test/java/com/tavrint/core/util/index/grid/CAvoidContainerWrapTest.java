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

/** The natives on raw handles: null handles, a pass and its result lists, ids, array arguments. */
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
        // The live object was touched by none of them.
        assertEquals(0, AvoidObject_PlacedState(obj));
        assertNull(AllPlacedObject(c));
        DestroyAvoidObject(obj);
    }

    @Test
    void passReportsStatesOffsetsAndListsInOrder() {
        assertNull(AllPlacedObject(c), "an empty list is null");
        assertNull(AllUnPlacedObject(c));
        long first = square(10, 10, 10), second = square(15, 15, 10);
        assertEquals(0, AvoidObject_PlacedState(first));
        assertTrue(AddAvoidObjectForce(c, first));
        assertEquals(1, AvoidObject_PlacedState(first));
        assertTrue(AddAvoidObject(c, second), "add returns true even when not placed");
        assertEquals(2, AvoidObject_PlacedState(second));

        long cleared = square(10, 10, 10);
        AvoidObject_AddOffset(cleared, 30, 0);
        AvoidObject_ClearOffset(cleared);
        AddAvoidObject(c, cleared);
        long tried = square(10, 10, 10);
        AvoidObject_AddOffset(tried, 5, 5); // still overlaps
        AvoidObject_AddOffset(tried, -10, 9); // touches only at the shared edge: free
        AvoidObject_AddOffset(tried, 40, 40);
        assertArrayEquals(new int[] {0, 0}, AvoidObject_Offset(tried));
        AddAvoidObject(c, tried);
        assertEquals(1, AvoidObject_PlacedState(tried));
        assertArrayEquals(new int[] {-10, -10}, AvoidObject_Offset(tried), "x twice, no y");
        long last = placeAt(50, 50, 5);
        assertArrayEquals(new long[] {first, tried, last}, AllPlacedObject(c));
        assertArrayEquals(new long[] {second, cleared}, AllUnPlacedObject(c));
    }

    @Test
    void idsRoundTripAndObjectResetKeepsOnlyTheStringId() {
        long obj = square(10, 10, 10);
        assertNull(AvoidObject_GetStringID(obj));
        String text = "Zürich – 東京 \uD83D\uDDFA \u0000 end";
        AvoidObject_SetStringID(obj, text);
        assertEquals(text, AvoidObject_GetStringID(obj));
        AvoidObject_SetStringID(obj, "");
        assertNull(AvoidObject_GetStringID(obj), "the empty string reads as null");
        AvoidObject_SetStringID(obj, "kept");
        AvoidObject_SetID(obj, Long.MIN_VALUE + 3);
        assertEquals(Long.MIN_VALUE + 3, AvoidObject_GetID(obj));
        AvoidObject_Reset(obj);
        assertEquals(0, AvoidObject_GetID(obj));
        assertEquals("kept", AvoidObject_GetStringID(obj));
        AddAvoidObjectForce(c, square(10, 10, 10));
        AddAvoidObject(c, obj);
        assertEquals(1, AvoidObject_PlacedState(obj), "the reset object has no footprint");
    }

    @Test
    void shortDeviceRectLeavesTheCanvasAndNullArgumentsAreAbsent() {
        AvoidContainerExtent(c, new int[] {0, 0, 10}, new double[] {0, 0, 50, 50});
        AvoidContainerExtent(c, null, null);
        // On a 10 x 10 canvas these squares would be clipped away and could not collide.
        AddAvoidObjectForce(c, square(60, 60, 10));
        assertEquals(2, AvoidObject_PlacedState(placeAt(65, 65, 10)));

        long obj = CreateAvoidObject(c);
        AvoidObject_AddLines(obj, null, 3);
        AvoidObject_AddRing(obj, null);
        AvoidObject_SetStringID(obj, null);
        AddAvoidObject(c, obj);
        assertEquals(1, AvoidObject_PlacedState(obj), "null arrays add nothing");
        AvoidContainerExtent(c, new int[] {0, 0, 10, 10}, null);
        assertEquals(1, AvoidObject_PlacedState(placeAt(60, 60, 10)), "10 x 10 drops the cells");
    }
}
