// UUID texts: random (version 4), name-based (MD5, version 3, no namespace prepended, the
// same text as the widely used JVM name-based UUID of the same bytes), and plain MD5 hex.
// Thread-safety: stateless (the random engine is built per call); safe from any thread.
#pragma once

#include <string>

namespace smarthome {

class Uuid {
public:
    static std::string generateRandomUUID();
    // "" only if the platform offers no MD5.
    static std::string nameUUIDFromString(const std::string& name);
    // 32 lower-case hex digits; "" only if the platform offers no MD5.
    static std::string computeMd5Hash(const std::string& text);
};

}  // namespace smarthome
