package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** A library named by the system property is loaded instead of the jar's, or its path is named. */
class NativeLibraryTest {
    /** Run in a child virtual machine: loads the library and makes one native call. */
    public static final class Probe {
        public static void main(String[] args) {
            long c = CAvoidContainerWrap.CreateAvoidContainer();
            System.out.println(c != 0 && CAvoidContainerWrap.DestroyAvoidContainer(c) ? "loaded" : "failed");
        }
    }

    @Test
    void namedPathOverridesTheClassPath(@TempDir Path dir) throws Exception {
        Path copy = dir.resolve("libcopy.so"), missing = dir.resolve("missing.so");
        try (InputStream in = NativeLibrary.class.getResourceAsStream(NativeLibrary.resourceFor("Linux", "amd64"))) {
            Files.copy(in, copy);
        }
        String property = "-D" + NativeLibrary.PATH_PROPERTY + "=";
        ChildJvm good = ChildJvm.run(property + copy, Probe.class.getName());
        assertEquals("loaded", good.output().strip(), good.output());
        ChildJvm bad = ChildJvm.run(property + missing, Probe.class.getName());
        assertTrue(bad.exitCode() != 0 && bad.output().contains("UnsatisfiedLinkError")
                        && bad.output().contains(missing.toString()), bad.output());
    }
}
