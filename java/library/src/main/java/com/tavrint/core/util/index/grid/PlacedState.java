package com.tavrint.core.util.index.grid;

/** Where an {@link AvoidObject} stands in its container's current pass. */
public enum PlacedState {
    /** Not added since it was handed out or reset. */
    NOT_ADDED,
    /** Placed, at a free candidate offset or by a forced add. */
    PLACED,
    /** Added, but every candidate offset overlapped an object placed before it. */
    NOT_PLACED;

    /**
     * The state for the library's code: 0, 1 or 2.
     *
     * @throws IllegalArgumentException for any other code
     */
    static PlacedState of(int code) {
        switch (code) {
            case 0:
                return NOT_ADDED;
            case 1:
                return PLACED;
            case 2:
                return NOT_PLACED;
            default:
                throw new IllegalArgumentException("unknown placed state " + code);
        }
    }
}
