package com.tavrint.demo;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.tavrint.demo.GeoData.City;
import com.tavrint.demo.GeoData.Polyline;
import java.io.BufferedReader;
import java.io.IOException;
import java.io.StringReader;
import java.util.List;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class GeoDataTest {
    private static BufferedReader text(String s) {
        return new BufferedReader(new StringReader(s));
    }

    @Test
    void citiesAndPolylinesKeepTheirFieldsAndSkipTheHeader() throws IOException {
        List<City> cities = GeoData.parseCities(text("name\tlon\tlat\tpopulation\tcountry\n"
                + "Saint-Étienne\t4.390000\t45.433330\t171483\tFR\n"
                + "Hamlet\t-0.500000\t-1.250000\t0\tGB\n"));
        assertEquals(List.of(new City("Saint-Étienne", 4.39, 45.43333, 171483L, "FR"),
                new City("Hamlet", -0.5, -1.25, 0L, "GB")), cities);
        List<Polyline> lines = GeoData.parsePolylines(text("id\tvertices\n"
                + "0\t1.5,2.5 3.0,4.0\n"
                + "1\t0.0,0.0 1.0,0.0 1.0,1.0 0.0,0.0\n" + "2\t1.0,2.0\n"));
        assertEquals(2, lines.size(), "a polyline of one vertex is left out");
        assertArrayEquals(new double[] {1.5, 2.5, 3.0, 4.0}, lines.get(0).lonLat());
        assertArrayEquals(new double[] {0, 0, 1, 0, 1, 1, 0, 0}, lines.get(1).lonLat());
    }

    @ParameterizedTest
    @CsvSource(delimiter = '|', value = {"header\\nA\\t1\\t2\\t3\\tXX\\nB\\tone\\t2\\t3\\tXX\\n|line 3",
        "header\\nA\\t1\\t2\\t3\\n|line 2"})
    void malformedCityLineNamesItsLineNumber(String input, String line) {
        String data = input.replace("\\n", "\n").replace("\\t", "\t");
        IOException e = assertThrows(IOException.class, () -> GeoData.parseCities(text(data)));
        assertTrue(e.getMessage().startsWith(line), e.getMessage());
    }

    @ParameterizedTest
    @CsvSource(delimiter = '|', value = {"1.0;2.0 3,4", "1.0,x 3,4"})
    void malformedVertexFails(String vertices) {
        assertThrows(IOException.class,
                () -> GeoData.parsePolylines(text("id\tvertices\n0\t" + vertices + "\n")));
    }
}
