// File-system helpers: existence tests, directories, copying, reading and removing files.
// Failures are logged through the "FileIO" logger and reported as false.
// Thread-safety: stateless; safe from any thread (concurrent changes to the same paths are
// the callers' business).
#pragma once

#include <string>
#include <vector>

namespace smarthome {

class FileIO {
public:
    // True when stat of path succeeds (any kind of file).
    static bool doesDirectoryExist(const std::string& path);
    // True when the file (or directory) can be opened for reading.
    static bool fileExists(const std::string& path);
    static bool createDirectory(const std::string& path, unsigned short mode);
    // a + "/" + b: one slash is always added.
    static std::string joinPath(const std::string& a, const std::string& b);
    // Note the order: destination first. Without overwrite an existing destination fails.
    static bool copyFile(const std::string& destination, const std::string& source, bool overwrite);
    static bool removeFile(const std::string& path);
    // Reads the whole file into out, replacing its content; the size is the file's end
    // position, so kernel files and FIFOs read as empty. On failure out is unchanged.
    static bool readFile(const std::string& path, std::vector<unsigned char>& out);
    // One-shot flag-file test whose read test is inverted: it answers false for every
    // file, and removes nothing, because a successful read counts as "not readable".
    static bool isFileSet(const std::string& path);
};

}  // namespace smarthome
