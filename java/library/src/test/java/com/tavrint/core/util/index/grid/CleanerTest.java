package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.Test;

/** Native memory of containers: freed once by close(), and by the Cleaner when one is dropped. */
class CleanerTest {
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
