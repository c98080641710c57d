#include "smarthome/FileIO.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include "smarthome/SmartHomeLogger.h"

namespace smarthome {

namespace {

const SmartHomeLogger logger("FileIO");

// Owns a file descriptor; close() reports the result of the close exactly once.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return fd_; }
    bool valid() const { return fd_ >= 0; }
    int close() {
        int result = ::close(fd_);
        fd_ = -1;
        return result;
    }

private:
    int fd_;
};

bool writeAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

}  // namespace

bool FileIO::doesDirectoryExist(const std::string& path) {
    struct stat info {};
    int ret = ::stat(path.c_str(), &info);
    if (ret != 0) {
        logger.e("%s:event=DirectoryDoesnotExist, directory=%s, ret=%d", "doesDirectoryExist",
                 path.c_str(), ret);
        return false;
    }
    return true;
}

bool FileIO::fileExists(const std::string& path) {
    // Non-blocking, so that a FIFO without a writer answers at once instead of hanging.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return file.valid();
}

bool FileIO::createDirectory(const std::string& path, unsigned short mode) {
    if (::mkdir(path.c_str(), mode) != 0) {
        logger.e("%s:event=cannotCreateDirectory,dirPath=%s,err=%s", "createDirectory",
                 path.c_str(), std::strerror(errno));
        return false;
    }
    logger.i("%s:event=SuccessfullyCreatedDirectory,directory=%s", "createDirectory", path.c_str());
    return true;
}

std::string FileIO::joinPath(const std::string& a, const std::string& b) {
    return a + "/" + b;
}

bool FileIO::copyFile(const std::string& destination, const std::string& source, bool overwrite) {
    FileDescriptor in(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
    if (!in.valid()) {
        logger.e("%s:event=cannotOpenSourceFilePath, dirPath=%s, err=%s", "copyFile",
                 source.c_str(), std::strerror(errno));
        return false;
    }
    int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (overwrite ? O_TRUNC : O_EXCL);
    FileDescriptor out(::open(destination.c_str(), flags, 0666));
    if (!out.valid()) {
        logger.e("%s:event=cannotOpenDestinationFilePath, dirPath=%s, err=%s", "copyFile",
                 destination.c_str(), std::strerror(errno));
        return false;
    }
    bool copied = true;
    char buffer[8192];
    while (true) {
        ssize_t count = ::read(in.get(), buffer, sizeof(buffer));
        if (count == 0) {
            break;
        }
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || !writeAll(out.get(), buffer, static_cast<size_t>(count))) {
            logger.e("%s:event=unableToCopy, sourcePath=%s, destinationPath=%s, err=%s", "copyFile",
                     source.c_str(), destination.c_str(), std::strerror(errno));
            copied = false;
            break;
        }
    }
    if (in.close() != 0) {
        logger.w("%s:event=unableToCloseSourceFile, sourcePath=%s, err=%s", "copyFile",
                 source.c_str(), std::strerror(errno));
    }
    if (out.close() != 0) {
        logger.e("%s:event=unableToCloseDestinationFile, destinationPath=%s, err=%s", "copyFile",
                 destination.c_str(), std::strerror(errno));
        return false;
    }
    return copied;
}

bool FileIO::removeFile(const std::string& path) {
    if (!fileExists(path)) {
        logger.w("%s:removeFileFailed, reason=FileDoesNotExist.", "removeFile");
        return false;
    }
    int result = std::remove(path.c_str());
    if (result != 0) {
        logger.e("%s:removeFileFailed, reason=CouldNotRemoveFile, result=%d", "removeFile", result);
        return false;
    }
    return true;
}

bool FileIO::readFile(const std::string& path, std::vector<unsigned char>& out) {
    // Non-blocking open: a FIFO reads as empty rather than waiting for a writer. Regular
    // files ignore the flag.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat info {};
    if (!file.valid() || ::fstat(file.get(), &info) != 0 || S_ISDIR(info.st_mode)) {
        logger.e("%s:event=unableToOpenFile, filePath=%s", "readFile", path.c_str());
        return false;
    }
    // The size is the file's end position: 0 for pipes and kernel files.
    size_t size = S_ISREG(info.st_mode) ? static_cast<size_t>(info.st_size) : 0;
    out.assign(size, 0);
    size_t done = 0;
    while (done < size) {
        ssize_t count = ::read(file.get(), out.data() + done, size - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;  // the file shrank meanwhile: keep what was read
        }
        done += static_cast<size_t>(count);
    }
    out.resize(done);
    return true;
}

bool FileIO::isFileSet(const std::string& path) {
    if (!fileExists(path)) {
        logger.e("%s:event=fileDoesNotexists, filePath=%s", "isFileSet", path.c_str());
        return false;
    }
    std::vector<unsigned char> content;
    if (readFile(path, content)) {
        logger.e("%s:event=fileNotReadable, filePath=%s", "isFileSet", path.c_str());
        return false;
    }
    if (!content.empty()) {
        removeFile(path);
        return true;
    }
    return false;
}

}  // namespace smarthome
