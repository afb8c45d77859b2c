package com.tavrint.core.util.index.grid;

import static com.tavrint.core.util.index.grid.CAvoidContainerWrap.*;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;

import java.util.ArrayList;
import java.util.HashSet;
import java.util.List;
import java.util.Random;
import java.util.Set;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import org.junit.jupiter.api.Test;

/** Whole random passes through the natives: from the pool, and on several threads at once. */
class PlacementPassTest {
    // Seeded passes of triangles and L-shaped lines with random offsets on one container, reset
    // between passes: per pass the placed ids, the unplaced ids and each object's x offset.
    private static List<List<Long>> run(int passes, Set<Long> handles) {
        long c = CreateAvoidContainer();
        AvoidContainerExtent(c, new int[] {0, 0, 160, 120}, null);
        List<List<Long>> out = new ArrayList<>();
        try {
            for (int p = 0; p < passes; p++) {
                Random r = new Random(7000 + p % 20);
                List<Long> offsets = new ArrayList<>();
                for (int i = 0; i < 30; i++) {
                    long obj = CreateAvoidObject(c);
                    AvoidObject_SetID(obj, i);
                    int x = r.nextInt(140), y = r.nextInt(100), s = 1 + r.nextInt(20);
                    int[] corners = {x, y, x + s, y, x + s, y + s};
                    if (r.nextBoolean()) AvoidObject_AddRing(obj, corners); // a filled triangle
                    else AvoidObject_AddLines(obj, corners, 1 + s % 3); // an L, 1 to 3 cells wide
                    for (int k = r.nextInt(4); k > 0; k--) {
                        AvoidObject_AddOffset(obj, r.nextInt(61) - 30, r.nextInt(61) - 30);
                    }
                    if (r.nextInt(10) == 0) AddAvoidObjectForce(c, obj);
                    else AddAvoidObject(c, obj);
                    offsets.add((long) AvoidObject_Offset(obj)[0]);
                }
                out.add(ids(AllPlacedObject(c), handles));
                out.add(ids(AllUnPlacedObject(c), handles));
                out.add(offsets);
                ResetAvoidContainer(c);
            }
            return out;
        } finally {
            DestroyAvoidContainer(c);
        }
    }

    private static List<Long> ids(long[] list, Set<Long> handles) {
        List<Long> ids = new ArrayList<>();
        for (long h : list == null ? new long[0] : list) {
            ids.add(AvoidObject_GetID(h));
            if (handles != null) handles.add(h);
        }
        return ids;
    }

    @Test
    void pooledObjectsServeManyPassesAndContainersOnOtherThreadsAgree() throws Exception {
        Set<Long> handles = new HashSet<>();
        List<List<Long>> out = run(200, handles);
        assertEquals(out.subList(0, 60), out.subList(60, 120), "a pass from the pool matches");
        assertEquals(out.subList(0, 60), out.subList(540, 600));
        assertFalse(out.get(0).isEmpty() || out.get(1).isEmpty(), "both outcomes occur");
        assertEquals(30, handles.size(), "every pass reuses the objects of the first");
        ExecutorService pool = Executors.newFixedThreadPool(4);
        try {
            List<Future<List<List<Long>>>> results = new ArrayList<>();
            for (int t = 0; t < 4; t++) results.add(pool.submit(() -> run(200, null)));
            for (Future<List<List<Long>>> result : results) assertEquals(out, result.get());
        } finally {
            pool.shutdownNow();
        }
    }
}
