// Uses the packaged jar from a plain class path, as an application does: the native library must
// come out of the jar, with no -Djava.library.path, and the jar must carry no demo class.
//   java -cp kxavoidcontainer-VERSION.jar JarSmoke.java
import com.tavrint.core.util.index.grid.AvoidContainer;

public class JarSmoke {
    public static void main(String[] args) {
        try (AvoidContainer c = new AvoidContainer()) {
            c.setDeviceRect(0, 0, 100, 100);
            if (!c.newObject().addRect(10, 10, 29, 19).add()
                    || c.newObject().addRect(20, 15, 39, 24).add()) {
                throw new AssertionError("jar smoke test: not 1 of 2 overlapping labels placed");
            }
        }
        if (JarSmoke.class.getClassLoader().getResource("com/tavrint/demo/Demo.class") != null) {
            throw new AssertionError("jar smoke test: the library jar carries the demos");
        }
        System.out.println("jar smoke test passed on " + System.getProperty("os.name") + " "
                + System.getProperty("os.arch") + ": native library from the jar, no demo classes");
    }
}
