package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.Test;

/** Native memory of containers: freed once by close(), and by the Cleaner when one is dropped. */
class CleanerTest {
    // Fills a container the way a pass does, with objects added and one only handed out, then
    // drops it without close().
    private static void dropOne() {
        AvoidContainer container = new AvoidContainer();
        container.setDeviceRect(0, 0, 300, 300);
        for (int i = 0; i < 20; i++) {
            container.newObject().addRect(i * 10, i * 10, i * 10 + 30, i * 10 + 8).add();
        }
        container.newObject().addRect(0, 0, 5, 5);
    }

    @Test
    void droppedContainersAreFreedByTheCleaner() throws InterruptedException {
        int before = AvoidContainer.liveNativeContainers();
        for (int i = 0; i < 50; i++) {
            dropOne();
        }
        assertTrue(AvoidContainer.liveNativeContainers() >= before + 1,
                "dropped containers count as live until they are cleaned");
        long deadline = System.nanoTime() + TimeUnit.SECONDS.toNanos(30);
        while (AvoidContainer.liveNativeContainers() > before && System.nanoTime() < deadline) {
            System.gc();
            Thread.sleep(20);
        }
        assertEquals(before, AvoidContainer.liveNativeContainers(),
                "every dropped container was freed");
    }

    @Test
    void closeFreesExactlyOnce() {
        int before = AvoidContainer.liveNativeContainers();
        AvoidContainer container = new AvoidContainer();
        assertEquals(before + 1, AvoidContainer.liveNativeContainers());
        container.close();
        assertEquals(before, AvoidContainer.liveNativeContainers());
        container.close();
        System.gc();
        assertEquals(before, AvoidContainer.liveNativeContainers(),
                "neither a second close nor the Cleaner frees it again");
    }
}
