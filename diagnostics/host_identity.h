// Who and where the program runs: the account, its domain and the computer's name, replaceable.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace brix {

/// The account and computer facts the logger writes into an error trace. Each answer is
/// `std::nullopt` when the system cannot give it; none of them raises.
class HostIdentity {
 public:
  virtual ~HostIdentity() = default;
  /// The name of the account the process runs as.
  virtual std::optional<std::string> AccountName() const = 0;
  /// The domain that holds `account`.
  virtual std::optional<std::string> AccountDomain(std::string_view account) const = 0;
  /// The computer's name.
  virtual std::optional<std::string> ComputerName() const = 0;

  /// The identity the logger reads; the system's unless replaced.
  static std::shared_ptr<const HostIdentity> Current();
  /// Replaces the identity; a null pointer restores the system's.
  static void Set(std::shared_ptr<const HostIdentity> identity);
};

/// The running system's answers. The account is the effective user's name from the password
/// database. A local account's domain is the computer it lives on, so the domain is the host
/// name up to its first dot, which is also the computer's name.
class SystemHostIdentity final : public HostIdentity {
 public:
  std::optional<std::string> AccountName() const override;
  std::optional<std::string> AccountDomain(std::string_view account) const override;
  std::optional<std::string> ComputerName() const override;
};

/// Fixed answers, for tests and for hosts that report under names of their own.
class FixedHostIdentity final : public HostIdentity {
 public:
  FixedHostIdentity(std::optional<std::string> account, std::optional<std::string> domain,
                    std::optional<std::string> computer)
      : account_(std::move(account)), domain_(std::move(domain)), computer_(std::move(computer)) {}
  std::optional<std::string> AccountName() const override { return account_; }
  std::optional<std::string> AccountDomain(std::string_view) const override { return domain_; }
  std::optional<std::string> ComputerName() const override { return computer_; }

 private:
  std::optional<std::string> account_;
  std::optional<std::string> domain_;
  std::optional<std::string> computer_;
};

/// Sets an identity for the lifetime of the object and restores the previous one afterwards.
class ScopedHostIdentity {
 public:
  explicit ScopedHostIdentity(std::shared_ptr<const HostIdentity> identity);
  ~ScopedHostIdentity();
  ScopedHostIdentity(const ScopedHostIdentity&) = delete;
  ScopedHostIdentity& operator=(const ScopedHostIdentity&) = delete;

 private:
  std::shared_ptr<const HostIdentity> previous_;
};

}  // namespace brix
