package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class NativeLibraryTest {
    // os.name and os.arch as the JVMs of each platform report them.
    @ParameterizedTest
    @CsvSource({
        "Linux, amd64, false, linux-x86_64, libKXAvoidContainer.so",
        "Linux, x86_64, false, linux-x86_64, libKXAvoidContainer.so",
        "Linux, aarch64, false, linux-aarch64, libKXAvoidContainer.so",
        "Linux, arm64, false, linux-aarch64, libKXAvoidContainer.so",
        "Linux, amd64, true, linux-x86_64-musl, libKXAvoidContainer.so",
        "Mac OS X, x86_64, false, macos-x86_64, libKXAvoidContainer.dylib",
        "Mac OS X, aarch64, false, macos-aarch64, libKXAvoidContainer.dylib",
        "Mac OS X, arm64, true, macos-aarch64, libKXAvoidContainer.dylib",
        "Darwin, arm64, false, macos-aarch64, libKXAvoidContainer.dylib",
        "Windows 11, amd64, false, windows-x86_64, KXAvoidContainer.dll",
        "Windows Server 2022, x64, false, windows-x86_64, KXAvoidContainer.dll",
        "Windows 11, aarch64, false, windows-aarch64, KXAvoidContainer.dll",
        "Linux, riscv64, false, linux-riscv64, libKXAvoidContainer.so",
        "Linux, i386, false, linux-i386, libKXAvoidContainer.so",
        "FreeBSD, amd64, false, freebsd-x86_64, libKXAvoidContainer.so",
    })
    void mapsEveryReportedSpellingToItsFolder(
            String osName, String osArch, boolean musl, String platform, String file) {
        assertEquals(platform, NativeLibrary.platform(osName, osArch, musl));
        assertEquals("native/" + platform + "/" + file, NativeLibrary.resourceFor(platform));
    }

    @Test
    void musl() {
        List<String> alpine = List.of(
                "7f00-7f10 r-xp 00000000 08:01 12 /usr/lib/jvm/java-17/lib/server/libjvm.so",
                "7f20-7f30 r-xp 00000000 08:01 34 /lib/ld-musl-x86_64.so.1");
        List<String> debian = List.of(
                "7f00-7f10 r-xp 00000000 08:01 56 /usr/lib/x86_64-linux-gnu/libc.so.6",
                "7f20-7f30 r-xp 00000000 08:01 78 /usr/lib/x86_64-linux-gnu/ld-linux-x86-64.so.2",
                "7f40-7f50 rw-p 00000000 00:00 0 [heap]");
        assertEquals(List.of(true, false, false), Stream.of(alpine, debian, List.<String>of())
                .map(NativeLibrary::mapsShowMusl).toList());
    }

    // The tests run from the class folder the build fills as the jar: it holds this platform.
    @Test
    void carriesTheLibraryOfThisPlatform() {
        assertTrue(NativeLibrary.carriedPlatforms().contains(NativeLibrary.currentPlatform()),
                () -> NativeLibrary.currentPlatform() + " not in " + NativeLibrary.carriedPlatforms());
    }

    /** Loads the library in a child JVM that reports another processor. */
    public static final class LoadInChild {
        public static void main(String[] args) {
            NativeLibrary.load();
        }
    }

    @Test
    void aPlatformTheJarLacksFailsNamingItTheCarriedOnesAndTheProperty(@TempDir Path empty)
            throws Exception {
        String output = ReadmeSnippetsTest.java(empty, System.getProperty("java.class.path"),
                "-Dos.arch=riscv64", "-Djava.library.path=" + empty, LoadInChild.class.getName());
        assertTrue(output.startsWith("1\n"), output);
        String carried = String.join(", ", NativeLibrary.carriedPlatforms());
        for (String part : List.of("UnsatisfiedLinkError", "platform linux-riscv64",
                     "carries " + carried, "-Dkxac.library.path=")) {
            assertTrue(output.contains(part), () -> "'" + part + "' not in: " + output);
        }
    }

    @Test
    void extractsOnceAndKeysTheCacheByContent(@TempDir Path cache) throws Exception {
        byte[] first = "first library".getBytes(StandardCharsets.UTF_8);
        byte[] second = "second library".getBytes(StandardCharsets.UTF_8);
        Path a = NativeLibrary.extractCached(first, cache, "KXAvoidContainer.dll");
        assertArrayEquals(first, Files.readAllBytes(a));
        assertEquals("KXAvoidContainer.dll", a.getFileName().toString());

        long written = Files.getLastModifiedTime(a).toMillis();
        Files.setLastModifiedTime(a, java.nio.file.attribute.FileTime.fromMillis(written - 60_000));
        assertEquals(a, NativeLibrary.extractCached(first, cache, "KXAvoidContainer.dll"));
        assertEquals(written - 60_000, Files.getLastModifiedTime(a).toMillis(), "rewritten");

        Path b = NativeLibrary.extractCached(second, cache, "KXAvoidContainer.dll");
        assertNotEquals(a.getParent(), b.getParent());
        assertArrayEquals(second, Files.readAllBytes(b));
        assertArrayEquals(first, Files.readAllBytes(a));
        try (var left = Files.list(a.getParent())) {
            assertEquals(1, left.count(), "a partial file was left behind");
        }
    }
}
