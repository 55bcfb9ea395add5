// Reading the definition document and finding the bundled sample database.
#include "tools/file_access.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "runtime/error.h"
#include "tools/brixq_errors.h"

namespace brix::brixq {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSource = "brixq";

std::string ReadAll(std::istream& in) {
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

std::string ReadDefinition(const std::string& path) {
  if (path == "-") return ReadAll(std::cin);
  std::error_code ignored;
  fs::file_status status = fs::status(path, ignored);
  if (status.type() == fs::file_type::not_found) {
    Raise(kErrFileNotFound, kSource, "File not found: " + path);
  }
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in || fs::is_directory(status)) {
    std::string reason = fs::is_directory(status) ? "is a folder" : std::strerror(errno);
    Raise(kErrFileAccess, kSource, "Path/File access error: " + path + " (" + reason + ")");
  }
  std::string text = ReadAll(in);
  if (in.bad()) Raise(kErrFileAccess, kSource, "Path/File access error: " + path);
  return text;
}

std::string DefaultDatabasePath() {
  // The relative paths from the command's folder are fixed when it is built.
  std::error_code ignored;
  fs::path folder = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  fs::path installed = (folder / BRIXQ_INSTALLED_DATABASE).lexically_normal();
  fs::path built = (folder / BRIXQ_BUILD_TREE_DATABASE).lexically_normal();
  if (fs::is_regular_file(installed, ignored)) return installed.string();
  if (fs::is_regular_file(built, ignored)) return built.string();
  Raise(kErrFileNotFound, kSource,
        "File not found: the sample database (neither " + installed.string() + " nor " +
            built.string() + "); give --db PATH");
}

}  // namespace brix::brixq
