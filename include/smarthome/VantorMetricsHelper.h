// Resolves a metric's program and source names to the metrics service's group id and
// schema id. The tables are deployment data: the build generates them from a table file
// (data/metric-ids.txt by default, SMARTHOME_METRIC_ID_TABLE for another deployment).
// Unknown names resolve to the table's fallback ids, so resolution never fails.
// Thread-safety: the tables are constant after first use; any thread may resolve.
#pragma once

#include <string>
#include <utility>

namespace smarthome {

class VantorMetricsHelper {
public:
    // (group id of program or the fallback group id, schema id of source or the fallback
    // schema id); the two lookups are independent.
    static std::pair<std::string, std::string> getGroupAndSchemaId(const std::string& program,
                                                                   const std::string& source);
};

}  // namespace smarthome
