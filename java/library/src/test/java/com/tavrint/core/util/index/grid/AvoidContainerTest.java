package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/** The handle-free layer: what collides, results and ids, the object lifecycle, loud misuse. */
class AvoidContainerTest {
    private static AvoidContainer canvas(AvoidContainer container) {
        container.setDeviceRect(0, 0, 200, 100);
        return container;
    }

    private static AvoidObject label(AvoidContainer container, String name, int x, int y) {
        return container.newObject().setStringId(name).addRect(x, y, x + 19, y + 5);
    }

    @Test
    void rectsCollideByCellsBoxesBlockLaterCellsAndIdsRoundTrip() {
        try (AvoidContainer c = canvas(new AvoidContainer())) {
            AvoidObject free = c.newObject().addRect(10, 10, 29, 19);
            AvoidObject beside = c.newObject().addRect(30, 10, 49, 19);
            AvoidObject corner = c.newObject().addRect(49, 19, 60, 30); // one cell of beside's
            AvoidObject obstacle = c.newObject().addRect(100, 70, 101, 71).addBox(100, 75, 150, 90);
            AvoidObject underBox = c.newObject().addRect(120, 80, 130, 85);
            List.of(free, beside, corner, obstacle, underBox).forEach(AvoidObject::add);
            assertEquals(List.of(free, beside, obstacle), c.placed());
            assertEquals(List.of(corner, underBox), c.unplaced());
            String text = "Zürich – 東京 \uD83D\uDDFA \u0000 end";
            assertEquals(text, free.setId(Long.MIN_VALUE + 3).setStringId(text).stringId());
            assertEquals(Long.MIN_VALUE + 3, free.id());
            assertNull(free.setStringId(null).stringId(), "null clears the string id");
        }
    }

    private static void assertAllThrow(Executable... calls) {
        for (Executable call : calls) assertThrows(IllegalStateException.class, call);
    }

    @Test
    void objectsAreFilledBeforeAddingAndUnusableOnceRecycledResetOrClosed() {
        AvoidContainer container = new AvoidContainer();
        AvoidObject early = container.newObject();
        canvas(container);
        AvoidObject placed = label(container, "a", 0, 0);
        placed.add();
        assertAllThrow(placed::add, placed::addForced, () -> placed.addBox(0, 0, 1, 1),
                () -> placed.addOffset(1, 1), placed::clearOffsets, placed::reset,
                () -> early.addRect(0, 0, 1, 1));
        placed.recycle();
        assertAllThrow(placed::recycle, placed::id);
        AvoidObject added = label(container, "first", 0, 0);
        assertTrue(added.add(), "the recycled object stopped blocking");
        AvoidObject waiting = label(container, "waiting", 0, 0);
        container.reset();
        assertAllThrow(added::placedState);
        assertEquals(PlacedState.NOT_ADDED, waiting.placedState());
        assertNull(container.newObject().stringId(), "a pooled object comes back unnamed");
        assertTrue(label(container, "again", 0, 0).add(), "the reset pass blocks nothing");
        assertFalse(waiting.add(), "an object handed out before the reset is still usable");
        container.close();
        container.close();
        assertAllThrow(container::newObject, container::placed, container::reset,
                () -> container.setDeviceRect(0, 0, 1, 1), waiting::placedState, early::id);
    }

    @Test
    void classicMistakesThrow() {
        try (AvoidContainer c = new AvoidContainer()) {
            assertAllThrow(() -> c.setMapExtent(0, 0, 1, 1));
            AvoidObject o = canvas(c).newObject();
            assertThrows(NullPointerException.class, () -> o.addLine(null, 1));
            for (Executable call : new Executable[] {() -> c.setDeviceRect(0, 0, 0, 100),
                    () -> c.setMapExtent(Double.NaN, 0, 1, 1), () -> c.setMapExtent(9, 0, 0, 9),
                    () -> o.addRing(0, 0, 5), () -> o.addLine(new int[] {0, 0, 9, 9}, 0),
                    () -> o.addRect(10, 0, 9, 5), () -> o.addRect(0, 0, Integer.MAX_VALUE, 5)}) {
                assertThrows(IllegalArgumentException.class, call);
            }
        }
    }
}
