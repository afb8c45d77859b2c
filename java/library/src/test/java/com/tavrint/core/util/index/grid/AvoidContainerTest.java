package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import java.util.List;
import java.util.function.Consumer;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.Arguments;
import org.junit.jupiter.params.provider.MethodSource;

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
    void passPlacesByCellsAndReportsListsOffsetsAndIds() {
        try (AvoidContainer c = canvas(new AvoidContainer())) {
            c.setMapExtent(0, 0, 2000, 1000);
            // A repeated point is a segment that draws nothing; the line goes on.
            AvoidObject road = c.newObject().addLine(new int[] {0, 50, 100, 50, 100, 50, 200, 50}, 2);
            road.addForced();
            AvoidObject free = c.newObject().addRect(10, 10, 29, 19);
            AvoidObject beside = c.newObject().addRect(30, 10, 49, 19);
            AvoidObject corner = c.newObject().addRect(49, 19, 60, 30); // shares a cell with beside
            AvoidObject moved = c.newObject().addRect(10, 46, 29, 51).addOffset(3, 8).addOffset(-4, -10);
            AvoidObject blocked = c.newObject().addRect(150, 46, 169, 51).addOffset(5, 2);
            AvoidObject boxes = c.newObject().addBox(0, 0, 199, 99); // boxes alone never collide
            AvoidObject obstacle = c.newObject().addRect(100, 70, 101, 71).addBox(100, 75, 150, 90);
            AvoidObject underBox = c.newObject().addRect(120, 80, 130, 85);
            // A later object's box does not see the cells placed before it.
            AvoidObject boxOverCells = c.newObject().addRect(180, 10, 181, 11).addBox(0, 0, 50, 30);
            List.of(free, beside, corner, moved, blocked, boxes, obstacle, underBox, boxOverCells)
                    .forEach(AvoidObject::add);
            assertEquals(List.of(road, free, beside, moved, boxes, obstacle, boxOverCells), c.placed());
            assertEquals(List.of(corner, blocked, underBox), c.unplaced());
            assertEquals(3, moved.offsetX(), "placed at its first free offset");
            String text = "Zürich – 東京 \uD83D\uDDFA \u0000 end";
            assertEquals(text, free.setId(Long.MIN_VALUE + 3).setStringId(text).stringId());
            assertEquals(Long.MIN_VALUE + 3, free.id());
            assertNull(free.setStringId("").stringId(), "the empty string reads as null");
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
