// Uses the packaged jar from a plain class path, as an application does: the native library must
// come out of the jar, with no -Djava.library.path.
//   java -cp kxavoidcontainer-VERSION.jar JarSmoke.java
import com.tavrint.core.util.index.grid.AvoidContainer;
import com.tavrint.core.util.index.grid.AvoidObject;
import java.util.List;

public class JarSmoke {
    public static void main(String[] args) {
        try (AvoidContainer container = new AvoidContainer()) {
            container.setDeviceRect(0, 0, 100, 100);
            AvoidObject first = container.newObject().addRect(10, 10, 29, 19);
            AvoidObject second = container.newObject().addRect(20, 15, 39, 24);
            first.add();
            second.add();
            if (!container.placed().equals(List.of(first))
                    || !container.unplaced().equals(List.of(second))) {
                System.err.println("jar smoke test: unexpected placement");
                System.exit(1);
            }
        }
        for (String demo : List.of("com.tavrint.demo.Demo", "com.tavrint.demo.PassBenchmark")) {
            if (JarSmoke.class.getClassLoader().getResource(demo.replace('.', '/') + ".class")
                    != null) {
                System.err.println("jar smoke test: the library jar carries " + demo);
                System.exit(1);
            }
        }
        System.out.println("jar smoke test: kxavoidcontainer " + AvoidContainer.version()
                + ", library loaded from the jar, 1 of 2 labels placed, no demo classes");
    }
}
