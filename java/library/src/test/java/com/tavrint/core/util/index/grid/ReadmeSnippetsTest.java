package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Stream;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * The README's Java snippets as a user copies them: each ```java block is a whole program that
 * must compile against the library and run, printing what the text after it says it prints. Run
 * with the library path property naming a missing file, the first one fails and names that file:
 * the property overrides the library in the jar.
 */
class ReadmeSnippetsTest {
    private static final Pattern BLOCK =
            Pattern.compile("```java\\n(.*?)```\\n+(?:It prints `([^`]*)`)?", Pattern.DOTALL);
    private static final Pattern CLASS = Pattern.compile("public (?:final )?class (\\w+)");

    /** Runs a fresh virtual machine on the tests' class path: its exit code, then its output. */
    private static String run(String... arguments) throws Exception {
        String java = Path.of(System.getProperty("java.home"), "bin", "java").toString();
        Process process = new ProcessBuilder(Stream.concat(Stream.of(java, "-cp",
                System.getProperty("java.class.path")), Stream.of(arguments)).toList())
                .redirectErrorStream(true).start();
        String output = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        return process.waitFor() + "\n" + output;
    }

    @Test
    void everyJavaSnippetCompilesRunsAndPrintsWhatTheTextSays(@TempDir Path dir) throws Exception {
        Matcher block = BLOCK.matcher(Files.readString(Path.of(System.getProperty("kxac.readme"))));
        int snippets = 0;
        while (block.find()) {
            Matcher cls = CLASS.matcher(block.group(1));
            assertTrue(cls.find(), "a snippet declares a public class:\n" + block.group(1));
            Path file = Files.writeString(dir.resolve(cls.group(1) + ".java"), block.group(1));
            String run = run(file.toString()); // compiles the source, then runs it
            assertTrue(run.startsWith("0\n"), run);
            assertTrue(block.group(2) == null || run.contains(block.group(2)),
                    cls.group(1) + " printed " + run);
            if (snippets++ > 0) continue;
            Path missing = dir.resolve("missing.so");
            run = run("-D" + NativeLibrary.PATH_PROPERTY + "=" + missing, file.toString());
            assertTrue(!run.startsWith("0\n") && run.contains("UnsatisfiedLinkError")
                    && run.contains(missing.toString()), run);
        }
        assertTrue(snippets > 0, "the README shows Java");
    }
}
