package com.tavrint.demo;

import java.io.IOException;
import java.util.function.Function;

/**
 * The command line of a demo: {@code --help} or {@code -h} prints the usage; options that do not
 * parse end the run with exit code 2, and files that cannot be read or written with exit code 1,
 * each with one line on standard error that starts with the demo's name.
 */
final class DemoMain {
    private DemoMain() {}

    /** What a demo does with its options. */
    interface Body<T> {
        void run(T options) throws IOException;
    }

    /** Parses the arguments (IllegalArgumentException with a reason) and runs the body. */
    static <T> void run(String name, String usage, String[] args, Function<String[], T> parse,
            Body<T> body) {
        System.setProperty("java.awt.headless", "true");
        if (args.length == 1 && (args[0].equals("--help") || args[0].equals("-h"))) {
            System.out.println(usage);
            return;
        }
        T options;
        try {
            options = parse.apply(args);
        } catch (IllegalArgumentException e) {
            System.err.println(name + ": " + e.getMessage() + " (--help lists the options)");
            System.exit(2);
            return;
        }
        try {
            body.run(options);
        } catch (IOException e) {
            System.err.println(name + ": " + DataFiles.describe(e));
            System.exit(1);
        }
    }
}
