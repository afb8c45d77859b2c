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
            AvoidObject first = container.newObject().addRing(10, 10, 30, 10, 30, 20, 10, 20);
            AvoidObject second = container.newObject().addRing(20, 15, 40, 15, 40, 25, 20, 25);
            first.add();
            second.add();
            if (!container.placed().equals(List.of(first))
                    || !container.unplaced().equals(List.of(second))) {
                System.err.println("jar smoke test: unexpected placement");
                System.exit(1);
            }
        }
        System.out.println("jar smoke test: library loaded from the jar, 1 of 2 labels placed");
    }
}
