// The signal by which placed objects tell the index that files them that they changed.
#pragma once

namespace kxac {
// Raised by the objects an index files when their footprint or offset changes. The index and the
// objects share it, so an object never points to an index (or an index to an object) that may be
// gone: an index that drops its objects starts a new signal, and the old one is freed with the
// last object that still holds it.
struct ChangeSignal {
    bool raised = false;
};
}  // namespace kxac
