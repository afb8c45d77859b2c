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

    @Test
    void rectsCollideWhereBoxesAloneNeverDo() {
        try (AvoidContainer container = canvas()) {
            assertTrue(container.newObject().addRect(10, 10, 29, 19).add());
            AvoidObject overlapping = container.newObject().addRect(20, 15, 39, 24);
            assertFalse(overlapping.add(), "rectangles of cells collide");
            AvoidObject touching = container.newObject().addRect(30, 10, 49, 19);
            assertTrue(touching.add(), "the cells of two rects next to each other do not overlap");
            AvoidObject corner = container.newObject().addRect(49, 19, 60, 30);
            assertFalse(corner.add(), "a shared corner cell is an overlap");

            assertTrue(container.newObject().addBox(0, 0, 199, 99).add());
            assertTrue(container.newObject().addBox(0, 0, 199, 99).add(),
                    "boxes alone never collide, not even with cells or each other");
        }
    }

    @Test
    void boxesBlockOnlyTheCellsOfLaterObjects() {
        try (AvoidContainer container = canvas()) {
            container.newObject().addRect(100, 10, 101, 11).addBox(100, 50, 150, 90).add();
            assertFalse(container.newObject().addRect(120, 60, 130, 70).add(),
                    "a placed object's box blocks the cells of a later one");
            assertTrue(container.newObject().addRect(10, 60, 30, 70).add());
            AvoidObject later = container.newObject().addRect(180, 10, 181, 11).addBox(0, 50, 50, 90);
            assertTrue(later.add(), "a later object's box does not see cells placed before it");
        }
    }

    @Test
    void classicMistakesThrowWithWhatToDo() {
        try (AvoidContainer container = new AvoidContainer()) {
            AvoidObject early = container.newObject();
            IllegalStateException noCanvas = assertThrows(IllegalStateException.class,
                    () -> early.addRect(0, 0, 10, 10));
            assertTrue(noCanvas.getMessage().contains("setDeviceRect"), noCanvas.getMessage());
            assertAllThrow(IllegalStateException.class, () -> early.addBox(0, 0, 1, 1),
                    () -> early.addLine(new int[] {0, 0, 5, 5}, 1), () -> early.addRing(0, 0, 5, 0, 5, 5),
                    () -> container.setMapExtent(0, 0, 10, 10));

            assertAllThrow(IllegalArgumentException.class,
                    () -> container.setDeviceRect(0, 0, 0, 100),
                    () -> container.setDeviceRect(0, 0, 100, -1),
                    () -> container.setDeviceRect(50, 50, 10, 10));
            assertFalse(container.hasDeviceRect(), "a rejected rect sets nothing");
            container.setDeviceRect(0, 0, 100, 100);
            assertAllThrow(IllegalArgumentException.class,
                    () -> container.setMapExtent(Double.NaN, 0, 10, 10),
                    () -> container.setMapExtent(0, 0, Double.POSITIVE_INFINITY, 10),
                    () -> container.setMapExtent(0, Double.NEGATIVE_INFINITY, 10, 10),
                    () -> container.setMapExtent(10, 0, 0, 10),
                    () -> container.setMapExtent(0, 5, 10, 5));
            container.setMapExtent(0, 0, 10, 10);

            AvoidObject obj = container.newObject();
            IllegalArgumentException width = assertThrows(IllegalArgumentException.class,
                    () -> obj.addLine(new int[] {0, 0, 50, 50}, -2));
            assertTrue(width.getMessage().contains("-2"), width.getMessage());
            assertAllThrow(IllegalArgumentException.class,
                    () -> obj.addLine(new int[] {0, 0, 50, 50}, 0),
                    () -> obj.addLine(new int[] {0, 0, 50, 50, 50, 50, 60, 60}, 1),
                    () -> obj.addRect(10, 0, 9, 5), () -> obj.addRect(0, 10, 5, 9));
            assertThrows(IllegalStateException.class, () -> early.addRect(0, 0, 10, 10),
                    "an object from before the canvas stays without one");
        }
    }

    @Test
    void versionIsTheReleasedOne() {
        assertTrue(AvoidContainer.version().matches("\\d+\\.\\d+\\.\\d+(-SNAPSHOT)?"),
                AvoidContainer.version());
    }
}
