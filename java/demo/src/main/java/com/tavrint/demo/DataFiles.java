package com.tavrint.demo;

import java.io.IOException;
import java.nio.file.AccessDeniedException;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.nio.file.Path;

/** Finding the demos' input files and naming their outputs, with one-line reasons on failure. */
final class DataFiles {
    private DataFiles() {}

    /** The file name in dir; fails with a reason that names the option to fix. */
    static Path require(Path dir, String name) throws IOException {
        if (!Files.isDirectory(dir)) {
            throw new NoSuchFileException(dir.toString(), null,
                    "data folder not found (run from the repository's top folder, or pass --data DIR)");
        }
        Path file = dir.resolve(name);
        if (!Files.isRegularFile(file)) {
            throw new NoSuchFileException(file.toString(), null,
                    "data file not found (pass --data DIR with the folder that holds " + name + ")");
        }
        return file;
    }

    /** One line for an input or output failure: the file and what went wrong. */
    static String describe(IOException e) {
        if (e instanceof NoSuchFileException n) {
            return n.getFile() + ": " + (n.getReason() != null ? n.getReason() : "no such file");
        }
        if (e instanceof AccessDeniedException a) {
            return a.getFile() + ": permission denied";
        }
        return e.getMessage() != null ? e.getMessage() : e.toString();
    }

    /** The picture's path with its extension replaced by suffix: out/demo.png -> out/demo-labels.tsv. */
    static Path listBeside(Path picture, String suffix) {
        String name = picture.getFileName().toString();
        int dot = name.lastIndexOf('.');
        String stem = dot > 0 ? name.substring(0, dot) : name;
        return picture.resolveSibling(stem + suffix);
    }
}
