package com.tavrint.core.util.index.grid;

/** Run in a child virtual machine: loads the library and makes one native call. */
public final class LoaderProbe {
    private LoaderProbe() {}

    public static void main(String[] args) {
        long c = CAvoidContainerWrap.CreateAvoidContainer();
        boolean ok = c != 0 && CAvoidContainerWrap.DestroyAvoidContainer(c);
        System.out.println(ok ? "loaded" : "failed");
    }
}
