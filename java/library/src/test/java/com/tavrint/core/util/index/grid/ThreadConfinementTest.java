package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import java.util.ConcurrentModificationException;
import java.util.List;
import java.util.concurrent.Callable;
import java.util.concurrent.CyclicBarrier;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.atomic.AtomicInteger;
import java.util.concurrent.atomic.AtomicReference;
import org.junit.jupiter.api.Test;

/** One container, two threads: overlapping use throws, hand-over between calls stays legal. */
class ThreadConfinementTest {
    private static final int RUNS = 300;
    private static final int LABELS = 300;

    // Labels in a grid of overlapping rows, so that about half are placed.
    private static boolean addLabel(AvoidContainer c, int i) {
        int x = (i * 37) % 180;
        int y = (i * 11) % 90;
        return c.newObject().setId(i).setStringId("label " + i).addRect(x, y, x + 15, y + 4)
                .addOffset(0, 5).add();
    }

    @Test
    void twoThreadsAddingToOneContainerGetTheConfinementExceptionAndNothingElse() throws Exception {
        int refused = 0;
        for (int run = 0; run < RUNS; run++) {
            try (AvoidContainer c = new AvoidContainer()) {
                c.setCanvasSize(200, 100);
                CyclicBarrier start = new CyclicBarrier(2);
                AtomicInteger addedCalls = new AtomicInteger();
                AtomicReference<Throwable> failure = new AtomicReference<>();
                Runnable adder = () -> {
                    try {
                        start.await();
                        for (int i = 0; i < LABELS; i++) {
                            addLabel(c, i);
                            addedCalls.incrementAndGet();
                        }
                    } catch (Throwable t) {
                        failure.compareAndSet(null, t);
                    }
                };
                List<Thread> adders =
                        List.of(new Thread(adder, "adder-a"), new Thread(adder, "adder-b"));
                adders.forEach(Thread::start);
                for (Thread thread : adders) thread.join();
                Throwable t = failure.get();
                if (t != null) {
                    assertInstanceOf(ConcurrentModificationException.class, t, "run " + run);
                    assertTrue(t.getMessage().contains("confined to one thread"), t.getMessage());
                    refused++;
                }
                // What the container lists is what the threads' add() calls put there.
                assertEquals(addedCalls.get(), c.placed().size() + c.unplaced().size());
            }
        }
        assertTrue(refused > 0, "in " + RUNS + " runs the threads never overlapped");
    }

    // One pass per task, in turn on the threads of a pool: the same answers as in one thread.
    @Test
    void passesHandedFromThreadToThreadGiveTheSameAnswers() throws Exception {
        ExecutorService pool = Executors.newFixedThreadPool(2);
        try (AvoidContainer c = new AvoidContainer()) {
            c.setCanvasSize(200, 100);
            Callable<List<Long>> pass = () -> {
                for (int i = 0; i < LABELS; i++) addLabel(c, i);
                List<Long> placed = c.placed().stream().map(AvoidObject::id).toList();
                c.reset();
                return placed;
            };
            List<Long> first = pool.submit(pass).get();
            assertTrue(first.size() > 10 && first.size() < LABELS, "some placed: " + first);
            for (int k = 0; k < 5; k++) assertEquals(first, pool.submit(pass).get(), "pass " + k);
        } finally {
            pool.shutdown();
        }
    }
}
