package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import com.tavrint.demo.Scene.Label;
import java.util.ArrayList;
import java.util.List;
import java.util.Random;
import org.junit.jupiter.api.Test;

class SceneTest {
    // 100 pixels per degree near the equator.
    private static final Projection CANVAS = new Projection(1000, 500, 0, -2.5, 10, 2.5);

    private static City city(String name, double lon, double lat, long population) {
        return new City(name, lon, lat, population, "XX");
    }

    private static List<String> names(Scene s) {
        return s.labels().stream().map(l -> l.city().name()).toList();
    }

    @Test
    void smallerCitiesInsideALargerCitysRoomAreLeftOut() {
        // Spacing 10: the large city keeps 40 pixels free, the small ones 10.
        List<City> cities = List.of(city("Big", 5, 0, 5_000_000), city("Near", 5.3, 0, 1000),
                city("Far", 5.45, 0, 1000), city("FarTwin", 5.5, 0, 1000));
        Scene s = Scene.build(CANVAS, cities, List.of(), List.of(), 10, 10);
        assertEquals(List.of("Big", "Far"), names(s));

        List<City> millions = List.of(city("Big", 5, 0, 5_000_000),
                city("Twin", 5.05, 0, 2_000_000), city("Neighbour", 5.3, 0, 1_000_000));
        assertEquals(List.of("Big", "Neighbour"),
                names(Scene.build(CANVAS, millions, List.of(), List.of(), 10, 10)),
                "a city of a million yields only to one within the base spacing");
    }

    @Test
    void keptCitiesRespectEveryRoomTakenBeforeThem() {
        long seed = 99L;
        Random rng = new Random(seed);
        List<City> cities = new ArrayList<>();
        for (int i = 0; i < 400; i++) {
            cities.add(city("C" + i, rng.nextDouble() * 12 - 1, rng.nextDouble() * 6 - 3,
                    3_000_000L >> rng.nextInt(10)));
        }
        cities.sort((a, b) -> Long.compare(b.population(), a.population()));
        int spacing = 15;
        Scene s = Scene.build(CANVAS, cities, List.of(), List.of(), 1000, spacing);
        List<Label> kept = s.labels();
        assertTrue(kept.size() > 10 && kept.size() < 400, "seed " + seed);
        for (int i = 0; i < kept.size(); i++) {
            Label l = kept.get(i);
            assertTrue(CANVAS.isOnCanvas(l.city().lon(), l.city().lat()), "seed " + seed);
            for (int j = 0; j < i; j++) {
                Label earlier = kept.get(j);
                double d = Math.hypot(CANVAS.x(l.city().lon()) - CANVAS.x(earlier.city().lon()),
                        CANVAS.y(l.city().lat()) - CANVAS.y(earlier.city().lat()));
                double room = spacing * earlier.style().roomFactor();
                if (l.style() == LabelStyle.CAPITAL_SIZE) room = Math.min(room, spacing);
                assertTrue(d >= room, "seed " + seed);
            }
        }
    }

    @Test
    void cityCountIsCappedAndOffCanvasCitiesAndLinesDroppedAndLongLinesCut() {
        List<City> cities = List.of(city("Out", -5, 0, 900), city("A", 1, 0, 800),
                city("B", 3, 0, 700), city("C", 7, 0, 600));
        assertEquals(List.of("A", "B"), names(Scene.build(CANVAS, cities, List.of(), List.of(), 2, 5)));
        Polyline off = new Polyline(new double[] {20, 0, 21, 1});
        Polyline across = new Polyline(new double[] {-1, 0, 11, 0});
        Polyline wiggly = new Polyline(new double[] {1, 0, 2, 0.1, 3, 0, 4, 0.1, 5, 0});
        Scene s = Scene.build(CANVAS, List.of(), List.of(off, across), List.of(across), 0, 5);
        assertEquals(List.of(1, 1, 1), List.of(s.borderLines().size(), s.coastLines().size(),
                s.borderPieces().size()), "a single segment is never cut, however long");
        s = Scene.build(CANVAS, List.of(), List.of(wiggly), List.of(), 0, 5);
        assertEquals(4, s.borderPieces().size());
    }
}
