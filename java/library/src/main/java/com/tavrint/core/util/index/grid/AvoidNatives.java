package com.tavrint.core.util.index.grid;

/**
 * The Java layer's own natives, beside the raw ones of {@link CAvoidContainerWrap}. Handles are
 * the same plain addresses, checked by the callers in this package.
 */
final class AvoidNatives {
    static {
        NativeLibrary.load();
    }

    private AvoidNatives() {}

    /**
     * For an object of container c that was not placed: per candidate offset, in order, the
     * handle of the first object placed before it that collides with it there, or 0. An empty
     * array for an object that is not in the container's unplaced list; null for a null handle.
     */
    static native long[] blockers(long c, long obj);
}
