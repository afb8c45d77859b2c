package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import org.junit.jupiter.api.Test;

/** Whole passes through the natives, against the cell-set model of {@link RandomPass}. */
class PlacementPassTest {
    private static long newContainer() {
        long c = CAvoidContainerWrap.CreateAvoidContainer();
        CAvoidContainerWrap.AvoidContainerExtent(
                c, new int[] {0, 0, RandomPass.WIDTH, RandomPass.HEIGHT}, null);
        return c;
    }

    private static List<RandomPass.Outcome> runAll(List<RandomPass> passes) {
        long c = newContainer();
        try {
            List<RandomPass.Outcome> out = new ArrayList<>();
            for (RandomPass pass : passes) {
                out.add(pass.run(c));
                CAvoidContainerWrap.ResetAvoidContainer(c);
            }
            return out;
        } finally {
            CAvoidContainerWrap.DestroyAvoidContainer(c);
        }
    }

    private static List<RandomPass> passes(long firstSeed, int count, int objects) {
        List<RandomPass> passes = new ArrayList<>();
        for (int i = 0; i < count; i++) {
            passes.add(new RandomPass(firstSeed + i, objects));
        }
        return passes;
    }

    @Test
    void labelsAndLinesArePlacedAsTheCellModelPredicts() {
        List<RandomPass> passes = passes(20240, 30, 40);
        List<RandomPass.Outcome> outcomes = runAll(passes);
        int placed = 0, unplaced = 0;
        for (int i = 0; i < passes.size(); i++) {
            RandomPass.Outcome expected = passes.get(i).expected();
            assertEquals(expected, outcomes.get(i), "seed " + passes.get(i).seed);
            placed += expected.placed().size();
            unplaced += expected.unplaced().size();
        }
        assertTrue(placed > 100 && unplaced > 100, "passes exercise both outcomes");
    }

    @Test
    void pooledObjectsServeManyPassesWithUnchangedResults() {
        List<RandomPass> distinct = passes(777, 8, 25);
        List<RandomPass.Outcome> expected = new ArrayList<>();
        for (RandomPass pass : distinct) {
            expected.add(pass.expected());
        }
        long c = newContainer();
        Set<Long> handles = new HashSet<>();
        try {
            for (int i = 0; i < 1000; i++) {
                RandomPass pass = distinct.get(i % distinct.size());
                assertEquals(expected.get(i % distinct.size()), pass.run(c), "pass " + i);
                for (long[] list : new long[][] {CAvoidContainerWrap.AllPlacedObject(c),
                    CAvoidContainerWrap.AllUnPlacedObject(c)}) {
                    for (long h : list == null ? new long[0] : list) {
                        handles.add(h);
                    }
                }
                CAvoidContainerWrap.ResetAvoidContainer(c);
            }
        } finally {
            CAvoidContainerWrap.DestroyAvoidContainer(c);
        }
        assertEquals(25, handles.size(), "every pass reuses the objects of the first");
    }

    @Test
    void containersOnSeveralThreadsMatchOneThread() throws Exception {
        List<RandomPass> passes = passes(4242, 40, 30);
        List<RandomPass.Outcome> single = runAll(passes);
        ExecutorService pool = Executors.newFixedThreadPool(4);
        try {
            List<Future<List<RandomPass.Outcome>>> results = new ArrayList<>();
            for (int t = 0; t < 4; t++) {
                results.add(pool.submit(() -> runAll(passes)));
            }
            for (Future<List<RandomPass.Outcome>> result : results) {
                assertEquals(single, result.get());
            }
        } finally {
            pool.shutdownNow();
        }
    }
}
