package com.tavrint.demo;

import java.io.BufferedReader;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;

/**
 * Readers of the map data files: tab-separated text in UTF-8 with one header line.
 *
 * <p>{@code cities.tsv} has the columns name, lon, lat, population, country and is ordered by
 * population, most populous first. {@code borders.tsv} and {@code coastline.tsv} have the columns
 * id and vertices, the vertices being {@code lon,lat} pairs separated by single spaces.
 */
public final class GeoData {
    /** A populated place, in degrees. */
    public record City(String name, double lon, double lat, long population, String country) {}

    /** A polyline as interleaved lon, lat values; a closed ring repeats its first vertex. */
    public record Polyline(double[] lonLat) {}

    private GeoData() {}

    public static List<City> readCities(Path file) throws IOException {
        try (BufferedReader in = Files.newBufferedReader(file, StandardCharsets.UTF_8)) {
            return parseCities(in);
        } catch (IOException e) {
            throw inFile(file, e);
        }
    }

    public static List<Polyline> readPolylines(Path file) throws IOException {
        try (BufferedReader in = Files.newBufferedReader(file, StandardCharsets.UTF_8)) {
            return parsePolylines(in);
        } catch (IOException e) {
            throw inFile(file, e);
        }
    }

    /** Parses cities after the header line; a malformed line fails with its line number. */
    static List<City> parseCities(BufferedReader in) throws IOException {
        List<City> cities = new ArrayList<>();
        String line = in.readLine();
        int lineNo = 1;
        while ((line = in.readLine()) != null) {
            lineNo++;
            if (line.isEmpty()) continue;
            String[] f = line.split("\t", -1);
            if (f.length != 5) throw malformed(lineNo, "expected 5 fields, found " + f.length);
            try {
                cities.add(new City(f[0], Double.parseDouble(f[1]), Double.parseDouble(f[2]),
                        Long.parseLong(f[3]), f[4]));
            } catch (NumberFormatException e) {
                throw malformed(lineNo, e.getMessage());
            }
        }
        return cities;
    }

    /** Parses polylines after the header line; lines with fewer than two vertices are kept out. */
    static List<Polyline> parsePolylines(BufferedReader in) throws IOException {
        List<Polyline> lines = new ArrayList<>();
        String line = in.readLine();
        int lineNo = 1;
        while ((line = in.readLine()) != null) {
            lineNo++;
            if (line.isEmpty()) continue;
            int tab = line.indexOf('\t');
            if (tab < 0) throw malformed(lineNo, "no tab");
            String[] vertices = line.substring(tab + 1).trim().split(" ");
            double[] lonLat = new double[vertices.length * 2];
            for (int i = 0; i < vertices.length; i++) {
                String v = vertices[i];
                int comma = v.indexOf(',');
                if (comma < 0) throw malformed(lineNo, "vertex without comma: " + v);
                try {
                    lonLat[2 * i] = Double.parseDouble(v.substring(0, comma));
                    lonLat[2 * i + 1] = Double.parseDouble(v.substring(comma + 1));
                } catch (NumberFormatException e) {
                    throw malformed(lineNo, e.getMessage());
                }
            }
            if (vertices.length >= 2) lines.add(new Polyline(lonLat));
        }
        return lines;
    }

    // Names the file in the message of a parse error.
    private static IOException inFile(Path file, IOException e) {
        if (e instanceof java.nio.file.FileSystemException) return e;
        return new IOException(file + ": " + e.getMessage(), e);
    }

    private static IOException malformed(int lineNo, String what) {
        return new IOException("line " + lineNo + ": " + what);
    }

    /** The three files of a world map: cities, borders and coastline. */
    public record World(List<City> cities, List<Polyline> borders, List<Polyline> coast) {}

    /** Reads the world map's files from dir; a missing one fails with a reason. */
    public static World readWorld(Path dir) throws IOException {
        return new World(readCities(DataFiles.require(dir, "cities.tsv")),
                readPolylines(DataFiles.require(dir, "borders.tsv")),
                readPolylines(DataFiles.require(dir, "coastline.tsv")));
    }
}
