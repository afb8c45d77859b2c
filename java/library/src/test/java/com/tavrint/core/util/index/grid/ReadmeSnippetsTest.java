package com.tavrint.core.util.index.grid;

import static org.junit.jupiter.api.Assertions.*;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.List;
import java.util.jar.JarEntry;
import java.util.jar.JarOutputStream;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Stream;
import org.junit.jupiter.api.Assumptions;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * The README's snippets as a user copies them: each ```java block is a whole program that must
 * compile against the library and run, printing what the text after it says it prints. Run with
 * the library path property naming a missing file, the first one fails and names that file: the
 * property overrides the library in the jar. The ```xml block is the pom.xml of a fresh Maven
 * project that builds the first program against this build's jar, offline; the version it names
 * is the jar's and the native library's.
 */
class ReadmeSnippetsTest {
    private static final Pattern BLOCK =
            Pattern.compile("```java\\n(.*?)```\\n+(?:It prints `([^`]*)`)?", Pattern.DOTALL);
    private static final Pattern POM = Pattern.compile("```xml\\n(<project.*?)```", Pattern.DOTALL);
    private static final Pattern CLASS = Pattern.compile("public (?:final )?class (\\w+)");
    private static final Pattern DEPENDENCY = Pattern.compile(
            "<artifactId>kxavoidcontainer</artifactId>\\s*<version>([^<]*)</version>");

    private static String readme() throws IOException {
        return Files.readString(Path.of(System.getProperty("kxac.readme")));
    }

    /** Runs a command in a directory: its exit code, then its output. */
    private static String run(Path dir, List<String> command) throws Exception {
        Process process = new ProcessBuilder(command).directory(dir.toFile())
                .redirectErrorStream(true).start();
        String output = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        return process.waitFor() + "\n" + output;
    }

    /** Runs a fresh virtual machine on the given class path: its exit code, then its output. */
    static String java(Path dir, String classPath, String... arguments) throws Exception {
        String java = Path.of(System.getProperty("java.home"), "bin", "java").toString();
        return run(dir, Stream.concat(Stream.of(java, "-cp", classPath), Stream.of(arguments))
                .toList());
    }

    @Test
    void everyJavaSnippetCompilesRunsAndPrintsWhatTheTextSays(@TempDir Path dir) throws Exception {
        Matcher block = BLOCK.matcher(readme());
        String classPath = System.getProperty("java.class.path");
        int snippets = 0;
        while (block.find()) {
            Matcher cls = CLASS.matcher(block.group(1));
            assertTrue(cls.find(), "a snippet declares a public class:\n" + block.group(1));
            Path file = Files.writeString(dir.resolve(cls.group(1) + ".java"), block.group(1));
            String run = java(dir, classPath, file.toString()); // compiles, then runs
            assertTrue(run.startsWith("0\n"), run);
            assertTrue(block.group(2) == null || run.contains(block.group(2)),
                    cls.group(1) + " printed " + run);
            if (snippets++ > 0) continue;
            Path missing = dir.resolve("missing.so");
            run = java(dir, classPath, "-D" + NativeLibrary.PATH_PROPERTY + "=" + missing,
                    file.toString());
            assertTrue(!run.startsWith("0\n") && run.contains("UnsatisfiedLinkError")
                    && run.contains(missing.toString()), run);
        }
        assertTrue(snippets > 0, "the README shows Java");
    }

    /**
     * The pom.xml as printed, with the first program, in a fresh project: it must compile with
     * Maven offline and run. The artifact comes from a local repository made for the test (this
     * build's classes as the jar), which borrows the plugins of the user's local repository.
     */
    @Test
    void thePomSnippetBuildsTheProgramInAFreshMavenProject(@TempDir Path dir) throws Exception {
        String text = readme();
        Matcher pom = POM.matcher(text);
        assertTrue(pom.find(), "the README shows a pom.xml");
        Matcher version = DEPENDENCY.matcher(pom.group(1));
        assertTrue(version.find(), "the pom depends on the library");
        assertEquals(AvoidContainer.version(), version.group(1), "the README names this version");
        assertEquals(version.group(1), AvoidContainer.libraryVersion(), "the library's too");
        assertTrue(version.group(1).matches("\\d+\\.\\d+\\.\\d+"), version.group(1));
        Path userRepository = Path.of(System.getProperty("user.home"), ".m2", "repository");
        Assumptions.assumeTrue(Files.isDirectory(userRepository), "no local Maven repository");

        Path repository = dir.resolve("repository");
        borrow(userRepository, repository, "com/tavrint");
        Path artifact = Files.createDirectories(repository.resolve(
                "com/tavrint/kxavoidcontainer/" + version.group(1)));
        String name = "kxavoidcontainer-" + version.group(1);
        Path jar = artifact.resolve(name + ".jar");
        jarOf(Path.of(AvoidContainer.class.getProtectionDomain().getCodeSource().getLocation()
                .toURI()), jar);
        Files.writeString(artifact.resolve(name + ".pom"), "<project><modelVersion>4.0.0"
                + "</modelVersion><groupId>com.tavrint</groupId><artifactId>kxavoidcontainer"
                + "</artifactId><version>" + version.group(1) + "</version></project>\n");

        Path project = Files.createDirectories(dir.resolve("project"));
        Files.writeString(project.resolve("pom.xml"), pom.group(1));
        Matcher program = BLOCK.matcher(text);
        assertTrue(program.find());
        Matcher cls = CLASS.matcher(program.group(1));
        assertTrue(cls.find());
        Path sources = Files.createDirectories(project.resolve("src/main/java"));
        Files.writeString(sources.resolve(cls.group(1) + ".java"), program.group(1));
        String build = run(project, List.of("mvn", "-B", "-q", "-o",
                "-Dmaven.repo.local=" + repository, "compile"));
        assertTrue(build.startsWith("0\n"), "mvn compile:\n" + build);
        String output = java(project, project.resolve("target/classes") + ":" + jar, cls.group(1));
        assertTrue(output.startsWith("0\n") && output.contains(program.group(2)), output);
    }

    // A repository whose folders are links to those of the user's, except along own (a path of
    // folders made real, so that the artifacts put there stay out of the user's repository).
    private static void borrow(Path from, Path to, String own) throws IOException {
        Files.createDirectories(to);
        String[] steps = own.split("/", 2);
        try (Stream<Path> entries = Files.list(from)) {
            for (Path entry : (Iterable<Path>) entries::iterator) {
                String entryName = entry.getFileName().toString();
                if (!entryName.equals(steps[0])) {
                    Files.createSymbolicLink(to.resolve(entryName), entry);
                } else if (steps.length > 1) {
                    borrow(entry, to.resolve(entryName), steps[1]);
                }
            }
        }
    }

    private static void jarOf(Path classes, Path jar) throws IOException {
        try (JarOutputStream out = new JarOutputStream(Files.newOutputStream(jar));
                Stream<Path> files = Files.walk(classes).filter(Files::isRegularFile)) {
            for (Path file : (Iterable<Path>) files::iterator) {
                out.putNextEntry(new JarEntry(classes.relativize(file).toString()));
                Files.copy(file, out);
            }
        }
    }
}
