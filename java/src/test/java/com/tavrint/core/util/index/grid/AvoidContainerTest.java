package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/** The handle-free layer: a whole pass, and misuse turned into exceptions. */
class AvoidContainerTest {
    private static AvoidContainer canvas() {
        AvoidContainer container = new AvoidContainer();
        container.setDeviceRect(0, 0, 200, 100);
        container.setMapExtent(0, 0, 2000, 1000);
        return container;
    }

    private static AvoidObject label(AvoidContainer container, String name, int x, int y) {
        return container.newObject()
                .setStringId(name)
                .addRing(x, y, x + 20, y, x + 20, y + 6, x, y + 6);
    }

    @Test
    void passPlacesLabelsAroundARoad() {
        try (AvoidContainer container = canvas()) {
            AvoidObject road =
                    container.newObject().setId(1).addLine(new int[] {0, 50, 200, 50}, 2);
            road.addForced();
            AvoidObject free = label(container, "free", 10, 10).setId(2);
            AvoidObject moved =
                    label(container, "moved", 10, 46).setId(3).addOffset(3, 8).addOffset(-4, -10);
            AvoidObject blocked = label(container, "blocked", 60, 46).setId(4).addOffset(5, 2);
            assertTrue(free.add());
            assertTrue(moved.add());
            assertFalse(blocked.add());

            assertEquals(List.of(road, free, moved), container.placed());
            assertEquals(List.of(blocked), container.unplaced());
            assertEquals(PlacedState.NOT_PLACED, blocked.placedState());
            assertEquals(3, moved.offsetX(), "placed at its first free offset");
            assertEquals("moved", moved.stringId());
            assertEquals(3, moved.id());
        }
    }

    @Test
    void resetRetiresAddedObjectsAndHandsOutCleanOnes() {
        try (AvoidContainer container = canvas()) {
            AvoidObject added = label(container, "first", 0, 0);
            added.add();
            AvoidObject waiting = label(container, "waiting", 0, 0);
            container.reset();
            assertThrows(IllegalStateException.class, added::placedState);
            assertEquals(PlacedState.NOT_ADDED, waiting.placedState());
            assertEquals(List.of(), container.placed());

            AvoidObject reused = container.newObject();
            assertNull(reused.stringId(), "a pooled object comes back without its string ID");
            assertEquals(0, reused.id());
            assertTrue(label(container, "again", 0, 0).add(), "the reset pass blocks nothing");
            assertFalse(waiting.add(), "the object handed out before the reset is still usable");
        }
    }

    private static void assertAllThrow(Class<? extends Throwable> type, Executable... calls) {
        for (Executable call : calls) {
            assertThrows(type, call);
        }
    }

    @Test
    void objectsAreFilledOnlyBeforeTheyAreAddedAndRecycledOnesAreUnusable() {
        try (AvoidContainer container = canvas()) {
            AvoidObject placed = label(container, "a", 0, 0);
            placed.add();
            assertAllThrow(IllegalStateException.class, placed::add, placed::addForced,
                    () -> placed.addBox(0, 0, 1, 1), () -> placed.addOffset(1, 1),
                    placed::clearOffsets, placed::reset);
            assertEquals("renamed", placed.setId(9).setStringId("renamed").stringId());
            AvoidObject fresh = container.newObject();
            assertThrows(IllegalArgumentException.class, () -> fresh.addRing(0, 0, 5));
            assertThrows(NullPointerException.class, () -> fresh.addLine(null, 1));
            placed.recycle();
            assertAllThrow(IllegalStateException.class, placed::recycle, placed::id);
            assertTrue(label(container, "second", 0, 0).add(), "the recycled one stopped blocking");
        }
    }

    @Test
    void closeIsIdempotentAndLaterUseThrows() {
        AvoidContainer container = canvas();
        AvoidObject added = label(container, "added", 0, 0);
        added.add();
        AvoidObject notAdded = container.newObject();
        container.close();
        container.close();
        assertTrue(container.isClosed());
        assertAllThrow(IllegalStateException.class, container::newObject, container::placed,
                container::reset, () -> container.setDeviceRect(0, 0, 1, 1), added::placedState,
                () -> notAdded.setId(1));
    }

    @Test
    void resetObjectLosesFootprintAndOffsetsButKeepsStringId() {
        try (AvoidContainer container = canvas()) {
            label(container, "blocker", 50, 50).addForced();
            AvoidObject obj = label(container, "kept", 50, 50).setId(5).addOffset(100, 0);
            obj.reset();
            assertEquals(0, obj.id());
            assertEquals("kept", obj.stringId());
            obj.addRing(50, 50, 60, 50, 60, 60, 50, 60);
            assertFalse(obj.add(), "the offset that would have freed it is gone");
        }
    }
}
