package com.tavrint.demo;

import java.io.BufferedReader;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * Readers of the street map files of {@code data/helsinki/}: tab-separated UTF-8 text with one
 * header line; geometries are {@code lon,lat} pairs separated by single spaces.
 *
 * <ul>
 *   <li>{@code streets.tsv}: id, name (may be empty), highway class, polyline;
 *   <li>{@code buildings.tsv}: id, name, building tag, closed ring;
 *   <li>{@code pois.tsv}: id, name, kind as key=value, lon, lat;
 *   <li>{@code water.tsv}: id, kind, ring or polyline.
 * </ul>
 */
public final class StreetData {
    /** A way: name (maybe empty), class or kind, and interleaved lon, lat values. */
    public record Way(String name, String kind, double[] lonLat) {
        public boolean isClosed() {
            int n = lonLat.length;
            return n >= 8 && lonLat[0] == lonLat[n - 2] && lonLat[1] == lonLat[n - 1];
        }
    }

    /** A named point of interest; kind is key=value, for example amenity=cafe. */
    public record Poi(String name, String kind, double lon, double lat) {}

    /** Everything of one street map. */
    public record Map(List<Way> streets, List<Way> buildings, List<Poi> pois, List<Way> water) {}

    private StreetData() {}

    public static Map read(Path dir) throws IOException {
        return new Map(ways(DataFiles.require(dir, "streets.tsv"), 1, 2, 3),
                ways(DataFiles.require(dir, "buildings.tsv"), 1, 2, 3),
                pois(DataFiles.require(dir, "pois.tsv")),
                ways(DataFiles.require(dir, "water.tsv"), -1, 1, 2));
    }

    static List<Way> ways(Path file, int nameCol, int kindCol, int geomCol) throws IOException {
        List<Way> ways = new ArrayList<>();
        for (String[] f : rows(file, Math.max(kindCol, geomCol) + 1)) {
            double[] lonLat = geometry(file, f[geomCol]);
            if (lonLat.length >= 4) {
                ways.add(new Way(nameCol < 0 ? "" : f[nameCol], f[kindCol], lonLat));
            }
        }
        return ways;
    }

    static List<Poi> pois(Path file) throws IOException {
        List<Poi> pois = new ArrayList<>();
        for (String[] f : rows(file, 5)) {
            try {
                pois.add(new Poi(f[1], f[2], Double.parseDouble(f[3]), Double.parseDouble(f[4])));
            } catch (NumberFormatException e) {
                throw new IOException(file + ": bad coordinate in " + String.join(" ", f));
            }
        }
        return pois;
    }

    private static List<String[]> rows(Path file, int fields) throws IOException {
        List<String[]> rows = new ArrayList<>();
        try (BufferedReader in = Files.newBufferedReader(file, StandardCharsets.UTF_8)) {
            String line = in.readLine();
            int lineNo = 1;
            while ((line = in.readLine()) != null) {
                lineNo++;
                if (line.isEmpty()) continue;
                String[] f = line.split("\t", -1);
                if (f.length < fields) {
                    throw new IOException(file + ": line " + lineNo + ": expected " + fields
                            + " fields, found " + f.length);
                }
                rows.add(f);
            }
        }
        return rows;
    }

    static double[] geometry(Path file, String text) throws IOException {
        String t = text.trim();
        if (t.isEmpty()) return new double[0];
        String[] vertices = t.split(" ");
        double[] lonLat = new double[vertices.length * 2];
        for (int i = 0; i < vertices.length; i++) {
            int comma = vertices[i].indexOf(',');
            try {
                lonLat[2 * i] = Double.parseDouble(vertices[i].substring(0, comma));
                lonLat[2 * i + 1] = Double.parseDouble(vertices[i].substring(comma + 1));
            } catch (RuntimeException e) {
                throw new IOException(file + ": bad vertex " + vertices[i]);
            }
        }
        return lonLat;
    }
}
