// The log file: its default folder and the one safe way of appending a report to it.
#include "diagnostics/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace brix {
namespace {

/// Closes a descriptor when it goes out of scope.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  int Get() const { return fd_; }

 private:
  int fd_;
};

// O_NONBLOCK: opening a FIFO planted at the path must not wait for a reader.
constexpr int kOpenFlags = O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

/// Gives owner write permission back to the regular file of this user behind `fd`; false for
/// anything else.
bool MakeWritable(int fd, struct stat& status) {
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) {
    return false;
  }
  if (status.st_mode & S_IWUSR) return true;
  return ::fchmod(fd, (status.st_mode & 07777) | S_IWUSR) == 0;
}

/// The log opened for appending. A read-only log of this user is first opened for reading,
/// made writable through that descriptor, and opened again: the second open must reach the
/// same file.
Descriptor OpenLog(const std::string& path) {
  Descriptor log(::open(path.c_str(), kOpenFlags | O_CREAT, 0600));
  if (log.Get() >= 0 || errno != EACCES) return log;
  Descriptor reading(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
  struct stat before {};
  if (reading.Get() < 0 || !MakeWritable(reading.Get(), before)) return Descriptor();
  log = Descriptor(::open(path.c_str(), kOpenFlags));
  struct stat after {};
  if (log.Get() < 0 || ::fstat(log.Get(), &after) != 0 || after.st_dev != before.st_dev ||
      after.st_ino != before.st_ino) {
    return Descriptor();
  }
  return log;
}

bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(fd, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// Creates `folder` and its missing parents with mode 0700.
void CreateFolders(const std::string& folder) {
  for (std::size_t slash = folder.find('/', 1);; slash = folder.find('/', slash + 1)) {
    const std::string part = folder.substr(0, slash);
    if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return;
    if (slash == std::string::npos) return;
  }
}

}  // namespace

std::string DefaultLogFolder(const std::string& exe_folder, bool exe_folder_writable,
                             const char* xdg_state_home, const char* home) {
  if (exe_folder_writable) return exe_folder;
  if (xdg_state_home && xdg_state_home[0] == '/') return xdg_state_home;
  if (home && home[0] == '/') return std::string(home) + "/.local/state";
  return exe_folder;
}

std::string DefaultLogFolder(const std::string& exe_folder) {
  const bool writable = ::access(exe_folder.c_str(), W_OK) == 0 || errno == ENOENT;
  const std::string folder =
      DefaultLogFolder(exe_folder, writable, std::getenv("XDG_STATE_HOME"), std::getenv("HOME"));
  if (folder != exe_folder) CreateFolders(folder);
  return folder;
}

void AppendToLogFile(const std::string& path, std::string_view text) {
  const Descriptor log = OpenLog(path);
  struct stat status {};
  if (log.Get() < 0 || ::fstat(log.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  MakeWritable(log.Get(), status);  // also when the open did not need it (a privileged user)
  if (WriteAll(log.Get(), text)) WriteAll(log.Get(), "\r\n");
}

}  // namespace brix
