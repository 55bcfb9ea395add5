// An error answered by the service: the HTTP status and the library's number, source and text.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "runtime/error.h"

namespace brix::brixq {

/// Raised by the service's handlers and turned into {"error": {...}} with `status`. `number` is
/// the library's error number, 0 for a fault of the request itself; `extra` members are added
/// beside "error".
struct ApiError : std::runtime_error {
  ApiError(int status, std::int32_t number, std::string source, const std::string& description,
           nlohmann::json extra = nlohmann::json::object())
      : std::runtime_error(description),
        status(status),
        number(number),
        source(std::move(source)),
        extra(std::move(extra)) {}
  /// A request fault (400 and the like) with number 0 and the source "brixq serve".
  ApiError(int status, const std::string& description)
      : ApiError(status, 0, "brixq serve", description) {}
  /// The library's `error`, answered with `status`.
  ApiError(int status, const Error& error)
      : ApiError(status, error.Number(), error.Source(), error.Description()) {}

  int status;
  std::int32_t number;
  std::string source;
  nlohmann::json extra;
};

}  // namespace brix::brixq
