// Runs the sqlite3 command-line shell on a database file: an outside reader of what the
// library wrote.
#pragma once

#include <cstdio>
#include <string>

namespace smarthome {
namespace test {

// The shell's output for one SQL statement, or "<error>" when it could not run.
inline std::string sqliteShell(const std::string& path, const std::string& sql) {
    std::string command = "sqlite3 '" + path + "' \"" + sql + "\" 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return "<error>";
    }
    std::string output;
    char buffer[256];
    size_t count;
    while ((count = fread(buffer, 1, sizeof(buffer), pipe)) > 0) {
        output.append(buffer, count);
    }
    return pclose(pipe) == 0 ? output : "<error>" + output;
}

}  // namespace test
}  // namespace smarthome
