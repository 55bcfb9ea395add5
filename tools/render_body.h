// The JSON body of a render request read fast: the definition's text apart from the options.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace brix::brixq {

struct RenderBody {
  std::string definition;
  nlohmann::json options;  ///< every member but "definition"
};

/// `body` split into the definition and the other members, when it is a well-formed JSON object
/// with a text "definition" (the last one, when named twice); `std::nullopt` for anything else,
/// which the caller reads the ordinary way to say what is wrong.
std::optional<RenderBody> ReadRenderBody(std::string_view body);

}  // namespace brix::brixq
