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
    void rectsCollideByCellsBoxesBlockOnlyLaterCellsAndIdsRoundTrip() {
        try (AvoidContainer c = canvas(new AvoidContainer())) {
            AvoidObject free = c.newObject().addRect(10, 10, 29, 19);
            AvoidObject beside = c.newObject().addRect(30, 10, 49, 19);
            AvoidObject corner = c.newObject().addRect(49, 19, 60, 30); // one cell of beside's
            AvoidObject boxes = c.newObject().addBox(0, 0, 199, 99); // boxes alone never collide
            AvoidObject obstacle = c.newObject().addRect(100, 70, 101, 71).addBox(100, 75, 150, 90);
            AvoidObject underBox = c.newObject().addRect(120, 80, 130, 85);
            // A later object's box does not see the cells placed before it.
            AvoidObject boxOverCells = c.newObject().addRect(180, 10, 181, 11).addBox(0, 0, 50, 30);
            List.of(free, beside, corner, boxes, obstacle, underBox, boxOverCells)
                    .forEach(AvoidObject::add);
            assertEquals(List.of(free, beside, boxes, obstacle, boxOverCells), c.placed());
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
        Class<?> state = IllegalStateException.class, arg = IllegalArgumentException.class;
        String rect = "pass left < right and top < bottom", extent = "pass x1 < x2 and y1 < y2";
        return Stream.of(
                m(state, "call setDeviceRect(...) on the container first",
                        c -> c.newObject().addRect(0, 0, 9, 9)),
                m(state, "setDeviceRect", c -> c.newObject().addLine(new int[] {0, 0, 5, 5}, 1)),
                m(state, "setDeviceRect", c -> c.newObject().addBox(0, 0, 1, 1)),
                m(state, "setDeviceRect(...) before the map", c -> c.setMapExtent(0, 0, 1, 1)),
                m(arg, rect, c -> c.setDeviceRect(0, 0, 0, 100)),
                m(arg, rect, c -> c.setDeviceRect(0, 0, 9, -1)),
                m(arg, "pass real numbers", c -> canvas(c).setMapExtent(Double.NaN, 0, 1, 1)),
                m(arg, extent, c -> canvas(c).setMapExtent(9, 0, 0, 9)),
                m(arg, extent, c -> canvas(c).setMapExtent(0, 5, 9, 5)),
                m(arg, "pass the half-width in cells, 1 or more",
                        c -> canvas(c).newObject().addLine(new int[] {0, 0, 9, 9}, 0)),
                m(arg, "(x, y) pairs", c -> canvas(c).newObject().addRing(0, 0, 5)),
                m(NullPointerException.class, "coords", c -> canvas(c).newObject().addLine(null, 1)),
                m(arg, "pass left <= right and top <= bottom",
                        c -> canvas(c).newObject().addRect(10, 0, 9, 5)),
                m(arg, "largest cell coordinate",
                        c -> canvas(c).newObject().addRect(0, 0, Integer.MAX_VALUE, 5)));
    }

    private static Arguments m(Class<?> type, String advice, Consumer<AvoidContainer> call) {
        return Arguments.of(type, advice, call);
    }

    /** Each case: the exception's type, words its message must hold, and the mistake. */
    @ParameterizedTest(name = "{0}: {1}")
    @MethodSource("mistakes")
    void classicMistakesThrowAndSayWhatToDo(Class<?> type, String advice,
            Consumer<AvoidContainer> call) {
        try (AvoidContainer container = new AvoidContainer()) {
            Exception e = assertThrows(Exception.class, () -> call.accept(container));
            assertEquals(type, e.getClass());
            assertTrue(e.getMessage().contains(advice), e.getMessage());
        }
    }
}
