package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.io.ByteArrayOutputStream;
import java.io.PrintStream;
import java.lang.reflect.Method;
import java.net.URL;
import java.net.URLClassLoader;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import javax.tools.DiagnosticCollector;
import javax.tools.JavaCompiler;
import javax.tools.JavaFileObject;
import javax.tools.StandardJavaFileManager;
import javax.tools.ToolProvider;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * The README's Java snippets as a user copies them: each ```java block is a whole source file
 * that must compile against the library as printed, and run without an exception.
 */
class ReadmeSnippetsTest {
    private static final Pattern BLOCK = Pattern.compile("```java\\n(.*?)```", Pattern.DOTALL);
    private static final Pattern CLASS = Pattern.compile("public (?:final )?class (\\w+)");

    static List<String> javaBlocks(String markdown) {
        List<String> blocks = new ArrayList<>();
        Matcher m = BLOCK.matcher(markdown);
        while (m.find()) {
            blocks.add(m.group(1));
        }
        return blocks;
    }

    @Test
    void everyJavaSnippetCompilesAndRuns(@TempDir Path dir) throws Exception {
        String readmePath = System.getProperty("kxac.readme");
        assertNotNull(readmePath, "the build names the README in kxac.readme");
        List<String> blocks =
                javaBlocks(Files.readString(Path.of(readmePath), StandardCharsets.UTF_8));
        assertFalse(blocks.isEmpty(), "the README shows Java");

        JavaCompiler compiler = ToolProvider.getSystemJavaCompiler();
        for (String source : blocks) {
            Matcher cls = CLASS.matcher(source);
            assertTrue(cls.find(), "snippet declares a public class:\n" + source);
            String name = cls.group(1);
            Path file = dir.resolve(name + ".java");
            Files.writeString(file, source, StandardCharsets.UTF_8);
            DiagnosticCollector<JavaFileObject> diagnostics = new DiagnosticCollector<>();
            try (StandardJavaFileManager files =
                            compiler.getStandardFileManager(diagnostics, null, null)) {
                boolean ok = compiler.getTask(null, files, diagnostics,
                                List.of("-classpath", System.getProperty("java.class.path"), "-d",
                                        dir.toString()),
                                null, files.getJavaFileObjects(file))
                        .call();
                assertTrue(ok, name + " does not compile: " + diagnostics.getDiagnostics());
            }
            try (URLClassLoader loader = new URLClassLoader(
                         new URL[] {dir.toUri().toURL()}, getClass().getClassLoader())) {
                Method main = loader.loadClass(name).getMethod("main", String[].class);
                PrintStream saved = System.out;
                ByteArrayOutputStream out = new ByteArrayOutputStream();
                System.setOut(new PrintStream(out, true, StandardCharsets.UTF_8));
                try {
                    main.invoke(null, (Object) new String[0]);
                } finally {
                    System.setOut(saved);
                }
                assertFalse(out.toString(StandardCharsets.UTF_8).isBlank(),
                        name + " prints what it found");
            }
        }
    }

    @Test
    void blocksAreFoundWholeAndOnlyForJava() {
        String md = "text\n```java\nclass A {}\n```\n```cpp\nint x;\n```\n```java\nclass B {}\n```\n";
        assertEquals(List.of("class A {}\n", "class B {}\n"), javaBlocks(md));
    }
}
