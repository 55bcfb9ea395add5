// The replaceable host identity and its answers from the running system.
#include "diagnostics/host_identity.h"

#include <pwd.h>
#include <unistd.h>

#include <mutex>
#include <vector>

namespace brix {
namespace {

std::mutex& IdentityMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<const HostIdentity>& CurrentIdentity() {
  static std::shared_ptr<const HostIdentity> identity = std::make_shared<SystemHostIdentity>();
  return identity;
}

// The host name up to its first dot; nullopt when the system does not give one.
std::optional<std::string> ShortHostName() {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') return std::nullopt;
  std::string text(name);
  return text.substr(0, text.find('.'));
}

}  // namespace

std::shared_ptr<const HostIdentity> HostIdentity::Current() {
  std::lock_guard lock(IdentityMutex());
  return CurrentIdentity();
}

void HostIdentity::Set(std::shared_ptr<const HostIdentity> identity) {
  if (!identity) identity = std::make_shared<SystemHostIdentity>();
  std::lock_guard lock(IdentityMutex());
  CurrentIdentity() = std::move(identity);
}

std::optional<std::string> SystemHostIdentity::AccountName() const {
  long size = sysconf(_SC_GETPW_R_SIZE_MAX);
  std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
      !found->pw_name || found->pw_name[0] == '\0') {
    return std::nullopt;
  }
  return std::string(found->pw_name);
}

std::optional<std::string> SystemHostIdentity::AccountDomain(std::string_view) const {
  return ShortHostName();
}

std::optional<std::string> SystemHostIdentity::ComputerName() const { return ShortHostName(); }

ScopedHostIdentity::ScopedHostIdentity(std::shared_ptr<const HostIdentity> identity)
    : previous_(HostIdentity::Current()) {
  HostIdentity::Set(std::move(identity));
}

ScopedHostIdentity::~ScopedHostIdentity() { HostIdentity::Set(previous_); }

}  // namespace brix
