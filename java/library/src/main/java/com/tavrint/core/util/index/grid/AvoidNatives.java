package com.tavrint.core.util.index.grid;

/**
 * The natives that {@link AvoidContainer} and {@link AvoidObject} need beyond those of {@link
 * CAvoidContainerWrap}, on the same raw handles and with the same rule for the null handle: each
 * does nothing and returns its null result. They are not part of the public interface.
 */
final class AvoidNatives {
    static {
        NativeLibrary.load();
    }

    private AvoidNatives() {}

    /**
     * Hands out an object as {@link CAvoidContainerWrap#CreateAvoidObject} does, with its string
     * ID emptied (a pooled object keeps the one of its previous use); 0 for the null handle.
     */
    static native long newObject(long c);

    /**
     * Adds the cells {@code left..right} by {@code top..bottom}, inclusive, as the ring on their
     * outer corners. Nothing is added when {@code right} or {@code bottom} is {@link
     * Integer#MAX_VALUE}.
     */
    static native void addRect(long obj, int left, int top, int right, int bottom);

    /** Adds the object to the container's pass, or places it when forced; its placed state. */
    static native int add(long c, long obj, boolean force);

    /** The current offset: x in the high 32 bits, y in the low 32 bits. */
    static native long offset(long obj);

    /**
     * Index of the current offset among the object's offsets in the order they were added, 0 for
     * the (0, 0) it starts with; -1 for the null handle.
     */
    static native int candidate(long obj);

    /** The version the native library was built as. */
    static native String libraryVersion();
}
