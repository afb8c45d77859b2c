package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import java.util.Arrays;
import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/**
 * The handle-free layer: what collides, results and ids, the object lifecycle, loud misuse, and
 * the native memory of containers.
 */
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

    // Misuse throws at each step; a recycled object's handle, handed out again, is the new object.
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
        long handle = placed.rawHandle();
        placed.recycle();
        assertAllThrow(placed::recycle, placed::id);
        AvoidObject added = label(container, "first", 0, 0);
        assertEquals(handle, added.rawHandle(), "the pool hands the object back");
        assertTrue(added.add(), "the recycled object stopped blocking");
        assertEquals(List.of(added), container.placed(), "its handle lists the new object");
        assertEquals(PlacedState.PLACED, added.placedState());
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

    // Each call with the words its message must hold: what is expected, or the limit.
    private static void assertRefused(Object[][] cases) {
        for (Object[] k : cases) {
            IllegalArgumentException e =
                    assertThrows(IllegalArgumentException.class, (Executable) k[0], (String) k[1]);
            assertTrue(e.getMessage().contains((String) k[1]), e.getMessage());
        }
    }

    @Test
    void malformedShapesCanvasesAndCoordinatesThrowSayingWhatIsExpected() {
        int max = AvoidContainer.MAX_COORDINATE;
        try (AvoidContainer c = new AvoidContainer()) {
            assertRefused(new Object[][] {
                {(Executable) () -> c.setDeviceRect(50, 0, 150, 100), "start at (0, 0)"},
                {(Executable) () -> c.setCanvasSize(0, 100), "1 to " + (1 << 30)},
                {(Executable) () -> c.setCanvasSize(100, (1 << 30) + 1), "1 to " + (1 << 30)},
                {(Executable) () -> c.setDeviceRect(0, 0, 100, Integer.MIN_VALUE), "1 to "},
            });
            assertFalse(c.hasDeviceRect(), "nothing was set");
            c.setCanvasSize(1 << 30, 1 << 30);
            c.setDeviceRect(0, 0, 200, 100);
            assertEquals(List.of(200, 100), List.of(c.canvasWidth(), c.canvasHeight()));
            AvoidObject o = c.newObject().addOffset(max, -max).addRect(-max, 0, 0, max - 1);
            assertRefused(new Object[][] {
                {(Executable) () -> o.addBox(10, 0, 9, 5), "left <= right and top <= bottom"},
                {(Executable) () -> o.addRect(10, 0, 9, 5), "left <= right and top <= bottom"},
                {(Executable) () -> o.addRing(1, 2), "at least three points"},
                {(Executable) () -> o.addRing(), "at least three points"},
                {(Executable) () -> o.addRing(0, 0, 5, 0, 5), "(x, y) pairs"},
                {(Executable) () -> o.addLine(new int[] {5, 5}, 2), "at least two points"},
                {(Executable) () -> o.addLine(new int[] {0, 0, 9, 9}, 0), "half-width"},
                {(Executable) () -> o.addLine(new int[] {0, 0, 9, 9}, max + 1), "half-width"},
                {(Executable) () -> o.addRect(0, 0, max + 1, 5), "MAX_COORDINATE"},
                {(Executable) () -> o.addBox(-max - 1, 0, 0, 0), "MAX_COORDINATE"},
                {(Executable) () -> o.addLine(new int[] {0, 0, max + 1, 9}, 1), "MAX_COORDINATE"},
                {(Executable) () -> o.addOffset(0, max + 1), "MAX_COORDINATE"},
            });
            assertThrows(NullPointerException.class, () -> o.addLine(null, 1));
            o.reset();
            assertTrue(o.addRect(0, 0, 5, 5).add(), "nothing refused was drawn or kept");
        }
    }

    @Test
    void theCandidateInForceAndItsOffsetTellBelowFromAbove() {
        try (AvoidContainer c = canvas(new AvoidContainer())) {
            for (int[] wall : new int[][] {{100, 50}, {60, 50}, {100, 30}}) { // right, left, above
                c.newObject().addRect(wall[0], wall[1], wall[0] + 29, wall[1] + 9).addForced();
            }
            AvoidObject label = c.newObject().addRect(100, 50, 129, 59).addOffset(-40, 0)
                    .addOffset(0, -20).addOffset(0, 20);
            assertTrue(label.add());
            assertEquals(List.of(3, 0, 20),
                    List.of(label.candidate(), label.offsetX(), label.offsetY()));
            assertArrayEquals(new int[] {0, 0},
                    CAvoidContainerWrap.AvoidObject_Offset(label.rawHandle()), "raw: x twice");
        }
    }

    @Test
    void cellsReachingPastTheCanvasTakeNoOffsetOnTheCanvasTheyAreAllKept() {
        try (AvoidContainer c = canvas(new AvoidContainer())) {
            AvoidObject wall = c.newObject().addRect(0, 40, 29, 49);
            wall.addForced();
            // Cells -20..-1 are dropped: at offset (+30, 0) they would overlap the wall unseen.
            AvoidObject cut = c.newObject().addRect(-20, 40, 9, 49).addOffset(30, 0);
            IllegalArgumentException e = assertThrows(IllegalArgumentException.class, cut::add);
            assertTrue(e.getMessage().contains("canvas edge"), e.getMessage());
            AvoidObject road = c.newObject().addLine(new int[] {-20, 90, 210, 90}, 2);
            assertTrue(road.add(), "past the edge with (0, 0) only: placed");
            assertFalse(cut.clearOffsets().add(), "its cells on the canvas overlap the wall");
            // Built on the canvas, shifted partly off it: cells 0..4 of the wall still meet it.
            AvoidObject shifted = c.newObject().addRect(0, 40, 9, 49).addOffset(-5, 0);
            assertFalse(shifted.add());
            assertEquals(List.of(wall, road), c.placed());
            assertEquals(List.of(cut, shifted), c.unplaced());
        }
    }

    // Candidates: where it stands over a and c, shifted over b, shifted clear. Placed after the
    // label, d overlaps every candidate and is never named; recycled, a stops blocking.
    @Test
    void blockersNameTheFirstObjectPlacedBeforeAtEachCandidate() {
        try (AvoidContainer c = canvas(new AvoidContainer())) {
            AvoidObject a = label(c, "a", 10, 10);
            AvoidObject b = label(c, "b", 60, 10);
            AvoidObject overA = label(c, "c", 15, 12);
            List.of(a, b, overA).forEach(AvoidObject::addForced);
            AvoidObject blocked = label(c, "label", 12, 11).addOffset(50, 0).addOffset(0, 0);
            assertFalse(blocked.add());
            AvoidObject after = c.newObject().addRect(0, 0, 199, 99);
            after.addForced();
            assertEquals(Arrays.asList(a, b, a), blocked.blockers());
            assertEquals(List.of(), a.blockers(), "a placed object has none");
            a.recycle();
            assertEquals(Arrays.asList(overA, b, overA), blocked.blockers());
            overA.recycle();
            assertEquals(Arrays.asList(null, b, null), blocked.blockers());
            c.reset();
            assertThrows(IllegalStateException.class, blocked::blockers);
        }
    }

    // Native memory of containers: freed once by close(), and by the Cleaner when one is dropped.
    @Test
    void closeFreesOnceAndDroppedContainersAreFreedByTheCleaner() throws InterruptedException {
        int before = AvoidContainer.liveNativeContainers();
        AvoidContainer closed = new AvoidContainer();
        closed.close();
        closed.close();
        assertEquals(before, AvoidContainer.liveNativeContainers(), "close frees, and only once");
        for (int i = 0; i < 50; i++) {
            // Filled as a pass fills it, with one object only handed out, then dropped unclosed.
            AvoidContainer container = new AvoidContainer();
            container.setDeviceRect(0, 0, 300, 300);
            for (int k = 0; k < 20; k++) container.newObject().addRect(k, k, k + 30, k + 8).add();
            container.newObject().addRect(0, 0, 5, 5);
        }
        assertTrue(AvoidContainer.liveNativeContainers() > before, "not freed before collection");
        // Waits at most 30 s for the collector; the count must come back exactly, not below.
        for (int i = 0; i < 1500 && AvoidContainer.liveNativeContainers() > before; i++) {
            System.gc();
            Thread.sleep(20);
        }
        assertEquals(before, AvoidContainer.liveNativeContainers(),
                "every dropped one was freed, and the closed one not again");
    }
}
