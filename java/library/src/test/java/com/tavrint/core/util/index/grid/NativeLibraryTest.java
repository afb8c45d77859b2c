package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** A library named by the system property is loaded instead of the jar's, or its path is named. */
class NativeLibraryTest {
    @Test
    void namedPathOverridesTheClassPath(@TempDir Path dir) throws Exception {
        Path copy = dir.resolve("libcopy.so");
        try (InputStream in = NativeLibrary.class.getResourceAsStream(
                     NativeLibrary.resourceFor("Linux", "amd64"))) {
            Files.copy(in, copy);
        }
        String property = "-D" + NativeLibrary.PATH_PROPERTY + "=";
        ChildJvm good = ChildJvm.run(property + copy, LoaderProbe.class.getName());
        assertEquals("loaded", good.output().strip(), good.output());

        Path missing = dir.resolve("missing.so");
        ChildJvm bad = ChildJvm.run(property + missing, LoaderProbe.class.getName());
        assertNotEquals(0, bad.exitCode());
        assertTrue(bad.output().contains("UnsatisfiedLinkError")
                        && bad.output().contains(missing.toString()), bad.output());
    }
}
