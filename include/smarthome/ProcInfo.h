// The process's proportional set size, from the kernel's smaps rollup.
// Thread-safety: stateless; safe from any thread.
#pragma once

namespace smarthome {

class ProcInfo {
public:
    // The "Pss:" value of /proc/self/smaps_rollup in kilobytes, or -1 (logged when the
    // file cannot be opened).
    static int getPssKb();
};

}  // namespace smarthome
