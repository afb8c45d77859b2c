package com.tavrint.core.util.index.grid;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import java.util.Locale;

/**
 * Loads {@code libKXAvoidContainer} once per class loader: from the path named by the system
 * property {@value #PATH_PROPERTY} if it is set, else from the copy inside the jar (extracted to a
 * temporary file that is deleted once loaded), else through {@code java.library.path}.
 */
final class NativeLibrary {
    static final String PATH_PROPERTY = "kxac.library.path";
    static final String LIBRARY_NAME = "KXAvoidContainer";

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

    /**
     * The class-path resource, relative to this class, that holds the library for the given
     * platform, or {@code null} when the jar carries none for it.
     */
    static String resourceFor(String osName, String osArch) {
        boolean linux = osName.toLowerCase(Locale.ROOT).startsWith("linux");
        boolean x8664 = osArch.equals("amd64") || osArch.equals("x86_64");
        return linux && x8664 ? "native/linux-x86_64/" + System.mapLibraryName(LIBRARY_NAME) : null;
    }

    private static void loadFromFirstSource() {
        String override = System.getProperty(PATH_PROPERTY);
        if (override != null && !override.isBlank()) {
            System.load(Path.of(override).toAbsolutePath().toString());
            return;
        }
        Throwable fromJar = null;
        String resource =
                resourceFor(System.getProperty("os.name", ""), System.getProperty("os.arch", ""));
        if (resource != null) {
            try (InputStream in = NativeLibrary.class.getResourceAsStream(resource)) {
                if (in != null) {
                    loadExtracted(in);
                    return;
                }
            } catch (IOException | UnsatisfiedLinkError e) {
                fromJar = e;
            }
        }
        try {
            System.loadLibrary(LIBRARY_NAME);
        } catch (UnsatisfiedLinkError e) {
            if (fromJar != null) {
                e.addSuppressed(fromJar);
            }
            throw e;
        }
    }

    // The mapping made by the dynamic loader outlives the file, so it is deleted at once.
    private static void loadExtracted(InputStream in) throws IOException {
        Path file = Files.createTempFile("lib" + LIBRARY_NAME, ".so");
        try {
            Files.copy(in, file, StandardCopyOption.REPLACE_EXISTING);
            System.load(file.toAbsolutePath().toString());
        } finally {
            Files.deleteIfExists(file);
        }
    }
}
