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
import org.junit.jupiter.params.provider.Arguments;
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
            // A repeated point is a segment that draws nothing; the line goes on.
            int[] line = {0, 50, 100, 50, 100, 50, 200, 50};
            AvoidObject road = container.newObject().addLine(line, 2);
            road.addForced();
            AvoidObject free = label(container, "free", 10, 10);
            AvoidObject moved =
                    label(container, "moved", 10, 46).addOffset(3, 8).addOffset(-4, -10);
            AvoidObject blocked = label(container, "blocked", 150, 46).addOffset(5, 2);
            assertTrue(free.add());
            assertTrue(moved.add());
            assertFalse(blocked.add());
            assertEquals(List.of(road, free, moved), container.placed());
            assertEquals(List.of(blocked), container.unplaced());
            assertEquals(3, moved.offsetX(), "placed at its first free offset");
        }
    }

    @Test
    void rectsAreCellsThatCollideAndBoxesBlockOnlyLaterCells() {
        try (AvoidContainer container = canvas(new AvoidContainer())) {
            assertTrue(container.newObject().addRect(10, 10, 29, 19).add());
            assertFalse(container.newObject().addRect(20, 15, 39, 24).add(), "overlapping");
            assertTrue(container.newObject().addRect(30, 10, 49, 19).add(), "side by side");
            assertFalse(container.newObject().addRect(49, 19, 60, 30).add(), "a shared corner");
            assertTrue(container.newObject().addBox(0, 0, 199, 99).add(), "boxes alone never do");

            container.newObject().addRect(100, 40, 101, 41).addBox(100, 50, 150, 90).add();
            assertFalse(container.newObject().addRect(120, 60, 130, 70).add(),
                    "a placed object's box blocks the cells of a later one");
            AvoidObject later =
                    container.newObject().addRect(180, 10, 181, 11).addBox(0, 50, 50, 90);
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
        assertNull(container.newObject().stringId(), "a pooled object comes back unnamed");
        assertTrue(label(container, "again", 0, 0).add(), "the reset pass blocks nothing");
        assertFalse(waiting.add(), "an object handed out before the reset is still usable");
        container.close();
        container.close();
        assertAllThrow(container::newObject, container::placed, container::reset,
                () -> container.setDeviceRect(0, 0, 1, 1), waiting::placedState, early::id);
    }

    static Stream<Arguments> mistakes() {
        Class<IllegalStateException> state = IllegalStateException.class;
        Class<IllegalArgumentException> arg = IllegalArgumentException.class;
        String rect = "pass left < right and top < bottom", extent = "pass x1 < x2 and y1 < y2";
        return Stream.of(
                mistake("rect before the canvas", state,
                        "call setDeviceRect(...) on the container first",
                        c -> c.newObject().addRect(0, 0, 9, 9)),
                mistake("line before the canvas", state, "setDeviceRect",
                        c -> c.newObject().addLine(new int[] {0, 0, 5, 5}, 1)),
                mistake("box before the canvas", state, "setDeviceRect",
                        c -> c.newObject().addBox(0, 0, 1, 1)),
                mistake("extent before the canvas", state, "setDeviceRect(...) before the map",
                        c -> c.setMapExtent(0, 0, 1, 1)),
                mistake("empty device rect", arg, rect, c -> c.setDeviceRect(0, 0, 0, 100)),
                mistake("upside-down device rect", arg, rect, c -> c.setDeviceRect(0, 0, 9, -1)),
                mistake("NaN in the extent", arg, "pass real numbers",
                        c -> canvas(c).setMapExtent(Double.NaN, 0, 1, 1)),
                mistake("inverted extent", arg, extent, c -> canvas(c).setMapExtent(9, 0, 0, 9)),
                mistake("flat extent", arg, extent, c -> canvas(c).setMapExtent(0, 5, 9, 5)),
                mistake("line width 0", arg, "pass the half-width in cells, 1 or more",
                        c -> canvas(c).newObject().addLine(new int[] {0, 0, 9, 9}, 0)),
                mistake("odd coordinate count", arg, "(x, y) pairs",
                        c -> canvas(c).newObject().addRing(0, 0, 5)),
                mistake("no coordinates", NullPointerException.class, "coords",
                        c -> canvas(c).newObject().addLine(null, 1)),
                mistake("inverted rect", arg, "pass left <= right and top <= bottom",
                        c -> canvas(c).newObject().addRect(10, 0, 9, 5)),
                mistake("rect past the last cell", arg, "largest cell coordinate",
                        c -> canvas(c).newObject().addRect(0, 0, Integer.MAX_VALUE, 5)));
    }

    private static Arguments mistake(String what, Class<? extends Exception> type, String advice,
            Consumer<AvoidContainer> call) {
        return Arguments.of(what, type, advice, call);
    }

    @ParameterizedTest(name = "{0}")
    @MethodSource("mistakes")
    void classicMistakesThrowAndSayWhatToDo(String what, Class<? extends Exception> type,
            String advice, Consumer<AvoidContainer> call) {
        try (AvoidContainer container = new AvoidContainer()) {
            Exception e = assertThrows(type, () -> call.accept(container));
            assertTrue(e.getMessage().contains(advice), e.getMessage());
        }
    }
}
