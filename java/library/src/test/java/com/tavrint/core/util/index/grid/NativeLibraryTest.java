package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** Where the library comes from: the class path, a named path, or nowhere. */
class NativeLibraryTest {
    /** Runs {@link LoaderProbe} in a fresh virtual machine; returns exit code and output. */
    private static String[] probe(String... jvmOptions) throws IOException, InterruptedException {
        List<String> command = new ArrayList<>();
        command.add(Path.of(System.getProperty("java.home"), "bin", "java").toString());
        command.addAll(List.of(jvmOptions));
        command.add("-cp");
        command.add(System.getProperty("java.class.path"));
        command.add(LoaderProbe.class.getName());
        Process process = new ProcessBuilder(command).redirectErrorStream(true).start();
        String output = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        assertTrue(process.waitFor(60, TimeUnit.SECONDS), "probe finished");
        return new String[] {Integer.toString(process.exitValue()), output};
    }

    @Test
    void libraryIsOnTheClassPathForLinuxX8664Only() {
        String resource = NativeLibrary.resourceFor("Linux", "amd64");
        assertEquals(resource, NativeLibrary.resourceFor("linux", "x86_64"));
        assertNotNull(NativeLibrary.class.getResource(resource));
        assertNull(NativeLibrary.resourceFor("Mac OS X", "x86_64"));
        assertNull(NativeLibrary.resourceFor("Linux", "aarch64"));
    }

    @Test
    void childVirtualMachineLoadsFromTheClassPath() throws Exception {
        String[] result = probe();
        assertEquals("0", result[0], result[1]);
        assertEquals("loaded", result[1].strip());
    }

    @Test
    void namedPathOverridesTheClassPath(@TempDir Path dir) throws Exception {
        Path copy = dir.resolve("libcopy.so");
        try (var in = NativeLibrary.class.getResourceAsStream(
                NativeLibrary.resourceFor("Linux", "amd64"))) {
            Files.copy(in, copy);
        }
        String[] good = probe("-D" + NativeLibrary.PATH_PROPERTY + "=" + copy);
        assertEquals("loaded", good[1].strip(), good[1]);

        Path missing = dir.resolve("missing.so");
        String[] bad = probe("-D" + NativeLibrary.PATH_PROPERTY + "=" + missing);
        assertNotEquals("0", bad[0]);
        assertTrue(bad[1].contains("UnsatisfiedLinkError") && bad[1].contains(missing.toString()),
                bad[1]);
    }
}
