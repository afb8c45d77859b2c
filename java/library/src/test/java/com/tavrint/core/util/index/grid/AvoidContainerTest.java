package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.List;
import java.util.function.Consumer;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.MethodSource;

/** The handle-free layer: a whole pass, what collides, the object lifecycle, loud misuse. */
class AvoidContainerTest {
    private static AvoidContainer canvas(AvoidContainer container) {
        container.setDeviceRect(0, 0, 200, 100);
        return container;
    }

    private static AvoidObject label(AvoidContainer container, String name, int x, int y) {
        return container.newObject().setStringId(name).addRect(x, y, x + 19, y + 5);
    }

    @Test
    void passPlacesLabelsAroundARoadInMapCoordinates() {
        try (AvoidContainer container = canvas(new AvoidContainer())) {
            container.setMapExtent(0, 0, 2000, 1000);
            AvoidObject road = container.newObject().addLine(new int[] {0, 50, 100, 50, 100, 50,
                200, 50}, 2); // a repeated point draws nothing and breaks nothing
            road.addForced();
            AvoidObject free = label(container, "free", 10, 10);
            AvoidObject moved = label(container, "moved", 10, 46).addOffset(3, 8).addOffset(-4, -10);
            AvoidObject blocked = label(container, "blocked", 150, 46).addOffset(5, 2);
            assertTrue(free.add());
            assertTrue(moved.add());
            assertFalse(blocked.add());
            assertEquals(List.of(road, free, moved), container.placed());
            assertEquals(List.of(blocked), container.unplaced());
            assertEquals(PlacedState.NOT_PLACED, blocked.placedState());
            assertEquals(3, moved.offsetX(), "placed at its first free offset");
        }
    }

    @Test
    void rectsAreCellsThatCollideAndBoxesBlockOnlyLaterCells() {
        try (AvoidContainer container = canvas(new AvoidContainer())) {
            assertTrue(container.newObject().addRect(10, 10, 29, 19).add());
            assertFalse(container.newObject().addRect(20, 15, 39, 24).add(), "overlapping");
            assertTrue(container.newObject().addRect(30, 10, 49, 19).add(), "side by side");
            assertFalse(container.newObject().addRect(49, 19, 60, 30).add(), "a shared corner cell");
            assertTrue(container.newObject().addBox(0, 0, 199, 99).add(), "boxes alone never collide");

            container.newObject().addRect(100, 40, 101, 41).addBox(100, 50, 150, 90).add();
            assertFalse(container.newObject().addRect(120, 60, 130, 70).add(),
                    "a placed object's box blocks the cells of a later one");
            AvoidObject later = container.newObject().addRect(180, 10, 181, 11).addBox(0, 50, 50, 90);
            assertTrue(later.add(), "a later object's box does not see cells placed before it");
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
        assertEquals("renamed", placed.setStringId("renamed").stringId(), "ids change any time");
        placed.recycle();
        assertAllThrow(placed::recycle, placed::id);
        AvoidObject added = label(container, "first", 0, 0);
        assertTrue(added.add(), "the recycled object stopped blocking");
        AvoidObject waiting = label(container, "waiting", 0, 0);
        container.reset();
        assertAllThrow(added::placedState);
        assertEquals(PlacedState.NOT_ADDED, waiting.placedState());
        assertNull(container.newObject().stringId(), "a pooled object comes back without its name");
        assertTrue(label(container, "again", 0, 0).add(), "the reset pass blocks nothing");
        assertFalse(waiting.add(), "an object handed out before the reset is still usable");
        container.close();
        container.close();
        assertAllThrow(container::newObject, container::placed, container::reset,
                () -> container.setDeviceRect(0, 0, 1, 1), waiting::placedState, early::id);
    }

    /** A classic mistake: the call on a new container, what it throws, what the message advises. */
    record Mistake(String what, Consumer<AvoidContainer> call, Class<? extends Exception> type,
            String advice) {
        @Override
        public String toString() {
            return what;
        }
    }

    static Stream<Mistake> mistakes() {
        Class<IllegalStateException> state = IllegalStateException.class;
        Class<IllegalArgumentException> arg = IllegalArgumentException.class;
        String realRect = "pass left < right and top < bottom";
        String realExtent = "pass x1 < x2 and y1 < y2";
        return Stream.of(
                new Mistake("rect before the canvas", c -> c.newObject().addRect(0, 0, 9, 9), state,
                        "call setDeviceRect(...) on the container first"),
                new Mistake("line before the canvas",
                        c -> c.newObject().addLine(new int[] {0, 0, 5, 5}, 1), state, "setDeviceRect"),
                new Mistake("box before the canvas", c -> c.newObject().addBox(0, 0, 1, 1), state,
                        "setDeviceRect"),
                new Mistake("extent before the canvas", c -> c.setMapExtent(0, 0, 1, 1), state,
                        "setDeviceRect(...) before the map extent"),
                new Mistake("empty device rect", c -> c.setDeviceRect(0, 0, 0, 100), arg, realRect),
                new Mistake("upside-down device rect", c -> c.setDeviceRect(0, 0, 100, -1), arg,
                        realRect),
                new Mistake("NaN in the extent", c -> canvas(c).setMapExtent(Double.NaN, 0, 1, 1),
                        arg, "pass real numbers"),
                new Mistake("inverted extent", c -> canvas(c).setMapExtent(10, 0, 0, 10), arg,
                        realExtent),
                new Mistake("flat extent", c -> canvas(c).setMapExtent(0, 5, 10, 5), arg, realExtent),
                new Mistake("line width 0",
                        c -> canvas(c).newObject().addLine(new int[] {0, 0, 9, 9}, 0), arg,
                        "pass the half-width in cells, 1 or more"),
                new Mistake("odd coordinate count", c -> canvas(c).newObject().addRing(0, 0, 5), arg,
                        "(x, y) pairs"),
                new Mistake("no coordinates", c -> canvas(c).newObject().addLine(null, 1),
                        NullPointerException.class, "coords"),
                new Mistake("inverted rect", c -> canvas(c).newObject().addRect(10, 0, 9, 5), arg,
                        "pass left <= right and top <= bottom"),
                new Mistake("rect past the last cell",
                        c -> canvas(c).newObject().addRect(0, 0, Integer.MAX_VALUE, 5), arg,
                        "largest cell coordinate"));
    }

    @ParameterizedTest(name = "{0}")
    @MethodSource("mistakes")
    void classicMistakesThrowAndSayWhatToDo(Mistake m) {
        try (AvoidContainer container = new AvoidContainer()) {
            Exception e = assertThrows(m.type(), () -> m.call().accept(container));
            assertTrue(e.getMessage().contains(m.advice()), e.getMessage());
        }
    }
}
