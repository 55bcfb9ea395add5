// Runs brixq with its standard streams redirected to temporary files.
#include "tests/tools/brixq_runner.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

extern char** environ;

namespace brix::test_support {
namespace {

// A file in the test's temporary folder, removed with the object.
class TempFile {
 public:
  explicit TempFile(const std::string& content = "") {
    path_ = ::testing::TempDir() + "brixq_XXXXXX";
    int fd = mkstemp(path_.data());
    EXPECT_GE(fd, 0) << "cannot create " << path_;
    if (fd >= 0) {
      EXPECT_EQ(write(fd, content.data(), content.size()), static_cast<ssize_t>(content.size()));
      close(fd);
    }
  }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

}  // namespace

std::string ReadFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

CommandResult RunBrixq(const std::vector<std::string>& args, const std::string& input) {
  TempFile in(input), out, err;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.path(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.path(), O_WRONLY | O_TRUNC, 0);
  posix_spawn_file_actions_addopen(&actions, 2, err.path(), O_WRONLY | O_TRUNC, 0);
  std::vector<std::string> words = {BRIXQ_PATH};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t pid = 0;
  int spawned = posix_spawn(&pid, BRIXQ_PATH, &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  CommandResult result;
  if (spawned != 0) {
    ADD_FAILURE() << "cannot start " << BRIXQ_PATH;
    return result;
  }
  int status = 0;
  waitpid(pid, &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.out = ReadFileBytes(out.path());
  result.err = ReadFileBytes(err.path());
  return result;
}

}  // namespace brix::test_support
