#include "smarthome/FileIO.h"

#include <android/log.h>
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "testing/TestSupport.h"

namespace smarthome {
namespace {

const char kTag[] = "SmartHome:FileIO";

class FileIOTest : public testing::Test {
protected:
    test::TempDir dir;
    test::LogCapture capture;

    static size_t openDescriptors() {
        size_t count = 0;
        if (DIR* fds = opendir("/proc/self/fd")) {
            while (readdir(fds) != nullptr) {
                ++count;
            }
            closedir(fds);
        }
        return count;
    }

    std::string read(const std::string& path) {
        std::vector<unsigned char> content;
        EXPECT_TRUE(FileIO::readFile(path, content));
        return std::string(content.begin(), content.end());
    }
};

TEST_F(FileIOTest, ExistenceAndDirectories) {
    std::string sub = FileIO::joinPath(dir.path(), "sub");
    EXPECT_FALSE(FileIO::doesDirectoryExist(sub));
    EXPECT_TRUE(FileIO::createDirectory(sub, 0771));
    EXPECT_TRUE(FileIO::doesDirectoryExist(sub));
    struct stat info {};
    ASSERT_EQ(stat(sub.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777 & ~0771u, 0u);
    EXPECT_FALSE(FileIO::createDirectory(sub, 0771));
    EXPECT_FALSE(FileIO::fileExists(FileIO::joinPath(dir.path(), "none")));
    EXPECT_EQ(FileIO::joinPath("a/", "b"), "a//b");

    auto lines = capture.lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(lines[0].text,
              "doesDirectoryExist:event=DirectoryDoesnotExist, directory=" + sub + ", ret=-1");
    EXPECT_EQ(lines[1].priority, ANDROID_LOG_INFO);
    EXPECT_EQ(lines[1].text, "createDirectory:event=SuccessfullyCreatedDirectory,directory=" + sub);
    EXPECT_EQ(lines[2].text,
              "createDirectory:event=cannotCreateDirectory,dirPath=" + sub + ",err=File exists");
}

TEST_F(FileIOTest, CopyTakesTheDestinationFirst) {
    std::string source = dir.file("source");
    std::string destination = dir.file("destination");
    std::string big(100000, 'x');
    big[77777] = '\0';
    ASSERT_TRUE(test::writeFile(source, big));
    EXPECT_TRUE(FileIO::copyFile(destination, source, false));
    EXPECT_EQ(read(destination), big);

    ASSERT_TRUE(test::writeFile(source, "short"));
    capture.clear();
    const size_t descriptors = openDescriptors();
    EXPECT_FALSE(FileIO::copyFile(destination, source, false));
    EXPECT_EQ(openDescriptors(), descriptors);  // the source was closed
    EXPECT_EQ(read(destination), big);
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              std::vector<std::string>{"copyFile:event=cannotOpenDestinationFilePath, dirPath=" +
                                       destination + ", err=File exists"});
    EXPECT_TRUE(FileIO::copyFile(destination, source, true));
    EXPECT_EQ(read(destination), "short");

    capture.clear();
    EXPECT_FALSE(FileIO::copyFile(destination, dir.file("missing"), true));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              std::vector<std::string>{"copyFile:event=cannotOpenSourceFilePath, dirPath=" +
                                       dir.file("missing") + ", err=No such file or directory"});
    // A directory opens but cannot be read: the copy fails after both files are open.
    capture.clear();
    EXPECT_FALSE(FileIO::copyFile(destination, dir.path(), true));
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(capture.texts(), std::vector<std::string>{
                                   "copyFile:event=unableToCopy, sourcePath=" + dir.path() +
                                   ", destinationPath=" + destination + ", err=Is a directory"});
}

TEST_F(FileIOTest, ReadAndRemove) {
    std::string path = dir.file("data");
    ASSERT_TRUE(test::writeFile(path, std::string("a\0b", 3)));
    EXPECT_EQ(read(path), std::string("a\0b", 3));
    std::vector<unsigned char> content{1, 2, 3};
    EXPECT_FALSE(FileIO::readFile(dir.file("missing"), content));
    EXPECT_FALSE(FileIO::readFile(dir.path(), content));
    EXPECT_EQ(content, (std::vector<unsigned char>{1, 2, 3}));  // untouched by the failures
    EXPECT_TRUE(FileIO::readFile("/proc/self/status", content));
    EXPECT_TRUE(FileIO::removeFile(path));
    EXPECT_FALSE(FileIO::fileExists(path));
    EXPECT_FALSE(FileIO::removeFile(path));
    std::string full = FileIO::joinPath(dir.path(), "full");
    ASSERT_TRUE(FileIO::createDirectory(full, 0700));
    ASSERT_TRUE(test::writeFile(FileIO::joinPath(full, "inside"), "x"));
    EXPECT_FALSE(FileIO::removeFile(full));
    EXPECT_TRUE(FileIO::doesDirectoryExist(full));

    EXPECT_EQ(capture.texts(ANDROID_LOG_WARN, kTag),
              std::vector<std::string>{"removeFile:removeFileFailed, reason=FileDoesNotExist."});
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "readFile:event=unableToOpenFile, filePath=" + dir.file("missing"),
                  "readFile:event=unableToOpenFile, filePath=" + dir.path(),
                  "removeFile:removeFileFailed, reason=CouldNotRemoveFile, result=-1"}));
}

TEST_F(FileIOTest, AFifoWithoutWriterNeverBlocks) {
    std::string fifo = dir.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    auto checks = std::async(std::launch::async, [&] {
        EXPECT_TRUE(FileIO::fileExists(fifo));
        std::vector<unsigned char> content{1};
        EXPECT_TRUE(FileIO::readFile(fifo, content));
        EXPECT_TRUE(content.empty());
        EXPECT_FALSE(FileIO::isFileSet(fifo));
    });
    if (checks.wait_for(test::kTestTimeout) != std::future_status::ready) {
        ADD_FAILURE() << "blocked on a FIFO without a writer";
        // Release the blocked open so the test can end: open a writer until it returns.
        while (checks.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
            int writer = open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
            if (writer >= 0) {
                close(writer);
            }
        }
    }
}

TEST_F(FileIOTest, IsFileSetAnswersFalseForEveryFile) {
    std::string flag = dir.file("flag");
    EXPECT_FALSE(FileIO::isFileSet(flag));
    ASSERT_TRUE(test::writeFile(flag, "1"));
    EXPECT_FALSE(FileIO::isFileSet(flag));
    EXPECT_TRUE(FileIO::fileExists(flag));  // the inverted read test never removes it
    ASSERT_TRUE(test::writeFile(dir.file("empty"), ""));
    EXPECT_FALSE(FileIO::isFileSet(dir.file("empty")));
    EXPECT_EQ(capture.texts(ANDROID_LOG_ERROR, kTag),
              (std::vector<std::string>{
                  "isFileSet:event=fileDoesNotexists, filePath=" + flag,
                  "isFileSet:event=fileNotReadable, filePath=" + flag,
                  "isFileSet:event=fileNotReadable, filePath=" + dir.file("empty")}));
}

}  // namespace
}  // namespace smarthome
