// Identifiers for openlog: stored once per title, never freed.
#include "diagnostics/syslog_identifier.h"

#include <mutex>
#include <set>
#include <string>

namespace brix {

const char* SyslogIdentifier(std::string_view title) {
  static std::mutex mutex;
  // A set's elements never move, and none is erased: every c_str() handed out stays valid. A
  // process uses few titles, so what is kept stays small.
  static std::set<std::string, std::less<>> identifiers;
  std::lock_guard lock(mutex);
  auto found = identifiers.find(title);
  if (found == identifiers.end()) found = identifiers.emplace(title).first;
  return found->c_str();
}

}  // namespace brix
