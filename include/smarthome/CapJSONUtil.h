// Answers two questions about a capability description: is its state retrievable, and
// is it reported proactively ("metadata" -> "properties" -> flag).
// Thread-safety: stateless; safe from any thread.
#pragma once

#include <utility>

#include "smarthome/JSONUtil.h"

namespace smarthome {

class CapJSONUtil {
public:
    // (true, flag) when metadata.properties.retrievable is a boolean; otherwise
    // (false, false), with one log line per missing level and one for the flag.
    static std::pair<bool, bool> isRetrievable(const JSONValue& capability);
    // The same for metadata.properties.proactivelyReported.
    static std::pair<bool, bool> isProactive(const JSONValue& capability);
};

}  // namespace smarthome
