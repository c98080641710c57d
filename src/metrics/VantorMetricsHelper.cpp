#include "smarthome/VantorMetricsHelper.h"

#include <array>
#include <string>
#include <unordered_map>

namespace smarthome {

namespace {

struct MetricIdRow {
    const char* name;
    const char* id;
};

// kGroupRows, kSchemaRows, kFallbackGroupId, kFallbackSchemaId: generated from the
// deployment's metric id table file.
#include "metrics/MetricIdTables.inc"

template <size_t N>
std::unordered_map<std::string, std::string> makeTable(const std::array<MetricIdRow, N>& rows) {
    std::unordered_map<std::string, std::string> table;
    table.reserve(N);
    for (const MetricIdRow& row : rows) {
        table.emplace(row.name, row.id);
    }
    return table;
}

// Built on first use (safe from any static initialiser) and constant afterwards; a function
// static is initialised once even when threads race to it.
const std::unordered_map<std::string, std::string>& groupTable() {
    static const std::unordered_map<std::string, std::string> table = makeTable(kGroupRows);
    return table;
}

const std::unordered_map<std::string, std::string>& schemaTable() {
    static const std::unordered_map<std::string, std::string> table = makeTable(kSchemaRows);
    return table;
}

}  // namespace

std::pair<std::string, std::string> VantorMetricsHelper::getGroupAndSchemaId(
    const std::string& program, const std::string& source) {
    const auto& groups = groupTable();
    const auto& schemas = schemaTable();
    auto group = groups.find(program);
    auto schema = schemas.find(source);
    return {group != groups.end() ? group->second : std::string(kFallbackGroupId),
            schema != schemas.end() ? schema->second : std::string(kFallbackSchemaId)};
}

}  // namespace smarthome
