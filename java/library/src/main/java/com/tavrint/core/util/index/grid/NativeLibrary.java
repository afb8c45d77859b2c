package com.tavrint.core.util.index.grid;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.security.MessageDigest;
import java.security.NoSuchAlgorithmException;
import java.util.ArrayList;
import java.util.HexFormat;
import java.util.List;
import java.util.Locale;

/**
 * Loads {@code libKXAvoidContainer} once per class loader: from the path named by the system
 * property {@value #PATH_PROPERTY} if it is set, else from the copy inside the jar for this
 * platform, else through {@code java.library.path}.
 *
 * <p>The jar carries one library per platform under {@code native/<os>-<arch>[-musl]/}, next to
 * this class. On Linux and macOS the library is extracted to a temporary file that is deleted
 * once loaded (the mapping outlives the file). Windows cannot delete a loaded DLL, so there it
 * is extracted once into a folder of the user's own temporary directory ({@code %TEMP%}) named
 * by the library's SHA-256, and loaded from there by every later run.
 */
final class NativeLibrary {
    static final String PATH_PROPERTY = "kxac.library.path";
    static final String LIBRARY_NAME = "KXAvoidContainer";

    /** Every platform the build packages, as folder names under {@code native/}. */
    static final List<String> KNOWN_PLATFORMS = List.of("linux-x86_64", "linux-aarch64",
            "linux-x86_64-musl", "linux-aarch64-musl", "macos-x86_64", "macos-aarch64",
            "windows-x86_64");

    private static final Object LOCK = new Object();
    private static boolean loaded; // guarded by LOCK

    private NativeLibrary() {}

    static void load() {
        synchronized (LOCK) {
            if (!loaded) {
                loadFromFirstSource();
                loaded = true;
            }
        }
    }

    /** The operating system part of a platform name: linux, macos, windows or the name itself. */
    static String osFamily(String osName) {
        String os = osName.toLowerCase(Locale.ROOT).trim();
        if (os.startsWith("linux")) {
            return "linux";
        }
        if (os.startsWith("mac") || os.startsWith("darwin")) {
            return "macos";
        }
        if (os.startsWith("windows")) {
            return "windows";
        }
        return os.replaceAll("[^a-z0-9]+", "");
    }

    /** The processor part of a platform name: x86_64, aarch64 or the spelling itself. */
    static String archFamily(String osArch) {
        String arch = osArch.toLowerCase(Locale.ROOT).trim();
        switch (arch) {
            case "amd64":
            case "x86_64":
            case "x86-64":
            case "x64":
            case "em64t":
                return "x86_64";
            case "aarch64":
            case "arm64":
                return "aarch64";
            default:
                return arch.replaceAll("[^a-z0-9_]+", "");
        }
    }

    /**
     * The platform name of the given {@code os.name} and {@code os.arch}, as the folder under
     * {@code native/} spells it; {@code musl} counts on Linux only.
     */
    static String platform(String osName, String osArch, boolean musl) {
        String os = osFamily(osName);
        String name = os + "-" + archFamily(osArch);
        return os.equals("linux") && musl ? name + "-musl" : name;
    }

    /** The file name of the library on a platform, as System.mapLibraryName gives it there. */
    static String fileName(String platform) {
        if (platform.startsWith("windows-")) {
            return LIBRARY_NAME + ".dll";
        }
        return "lib" + LIBRARY_NAME + (platform.startsWith("macos-") ? ".dylib" : ".so");
    }

    /** The class-path resource, relative to this class, of the library for a platform. */
    static String resourceFor(String platform) {
        return "native/" + platform + "/" + fileName(platform);
    }

    /**
     * Whether the process runs on musl, read from its memory map (the lines of
     * /proc/self/maps): a musl process maps the musl loader, which is also its C library.
     */
    static boolean mapsShowMusl(List<String> mapsLines) {
        for (String line : mapsLines) {
            int slash = line.lastIndexOf('/');
            String file = slash < 0 ? line : line.substring(slash + 1);
            if (file.startsWith("ld-musl-") || file.startsWith("libc.musl-")) {
                return true;
            }
        }
        return false;
    }

    /** The platform this virtual machine runs on. */
    static String currentPlatform() {
        String osName = System.getProperty("os.name", "");
        boolean musl = false;
        if (osFamily(osName).equals("linux")) {
            try {
                musl = mapsShowMusl(Files.readAllLines(Path.of("/proc/self/maps")));
            } catch (IOException | RuntimeException e) {
                musl = false; // no map to read: take glibc, the common case
            }
        }
        return platform(osName, System.getProperty("os.arch", ""), musl);
    }

    /** The platforms whose library this class's jar (or class folder) carries. */
    static List<String> carriedPlatforms() {
        List<String> carried = new ArrayList<>();
        for (String platform : KNOWN_PLATFORMS) {
            if (NativeLibrary.class.getResource(resourceFor(platform)) != null) {
                carried.add(platform);
            }
        }
        return carried;
    }

    /** The message of the error raised when no library could be found for a platform. */
    static String missingLibraryMessage(String platform, List<String> carried) {
        return "No " + LIBRARY_NAME + " native library for platform " + platform
                + " (os.name=" + System.getProperty("os.name") + ", os.arch="
                + System.getProperty("os.arch") + "): this jar carries "
                + (carried.isEmpty() ? "none" : String.join(", ", carried))
                + ", and java.library.path has none. Build the library for this platform and "
                + "start Java with -D" + PATH_PROPERTY + "=/path/to/" + fileName(platform);
    }

    private static void loadFromFirstSource() {
        String override = System.getProperty(PATH_PROPERTY);
        if (override != null && !override.isBlank()) {
            System.load(Path.of(override).toAbsolutePath().toString());
            return;
        }
        String platform = currentPlatform();
        Throwable fromJar = null;
        try (InputStream in = NativeLibrary.class.getResourceAsStream(resourceFor(platform))) {
            if (in != null) {
                byte[] library = in.readAllBytes();
                if (platform.startsWith("windows-")) {
                    Path dir = Path.of(System.getProperty("java.io.tmpdir"), "kxavoidcontainer");
                    System.load(extractCached(library, dir, fileName(platform)).toString());
                } else {
                    loadDeletingAfter(library, fileName(platform));
                }
                return;
            }
        } catch (IOException | UnsatisfiedLinkError e) {
            fromJar = e;
        }
        try {
            System.loadLibrary(LIBRARY_NAME);
        } catch (UnsatisfiedLinkError e) {
            UnsatisfiedLinkError missing = new UnsatisfiedLinkError(
                    missingLibraryMessage(platform, carriedPlatforms()));
            missing.addSuppressed(e);
            if (fromJar != null) {
                missing.addSuppressed(fromJar);
            }
            throw missing;
        }
    }

    private static void loadDeletingAfter(byte[] library, String fileName) throws IOException {
        int dot = fileName.lastIndexOf('.');
        Path file = Files.createTempFile(fileName.substring(0, dot), fileName.substring(dot));
        try {
            Files.write(file, library);
            System.load(file.toAbsolutePath().toString());
        } finally {
            Files.deleteIfExists(file);
        }
    }

    /**
     * The library's file in {@code cacheDir}/SHA-256/{@code fileName}, written there unless an
     * earlier run (or another process) has already done so. The name is taken by an atomic
     * rename of a complete file, so a reader never sees a partial library; a file of another
     * content cannot be under the same hash.
     */
    static Path extractCached(byte[] library, Path cacheDir, String fileName) throws IOException {
        Path dir = cacheDir.resolve(sha256(library));
        Path file = dir.resolve(fileName);
        if (Files.isRegularFile(file) && Files.size(file) == library.length) {
            return file.toAbsolutePath();
        }
        Files.createDirectories(dir);
        Path partial = Files.createTempFile(dir, fileName, ".part");
        try {
            Files.write(partial, library);
            try {
                Files.move(partial, file, StandardCopyOption.ATOMIC_MOVE);
            } catch (IOException e) {
                // Another process has put the same file there first (Windows refuses to replace
                // a loaded DLL), or the file system cannot rename atomically.
                if (!Files.isRegularFile(file) || Files.size(file) != library.length) {
                    Files.move(partial, file, StandardCopyOption.REPLACE_EXISTING);
                }
            }
        } finally {
            Files.deleteIfExists(partial);
        }
        return file.toAbsolutePath();
    }

    private static String sha256(byte[] bytes) {
        try {
            return HexFormat.of().formatHex(MessageDigest.getInstance("SHA-256").digest(bytes));
        } catch (NoSuchAlgorithmException e) {
            throw new IllegalStateException("SHA-256 is required of every Java platform", e);
        }
    }
}
