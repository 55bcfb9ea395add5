// simdjson reads a render body: nlohmann-json's lexer took a third of the server's time copying
// the escaped definition character by character. The few options are handed on as nlohmann values.
#include "tools/render_body.h"

#include <simdjson.h>

namespace brix::brixq {
namespace {

// A parser keeps its buffers for the next body (about 14 bytes for each byte of the largest it
// read); beyond this size a body gets a parser of its own, so that each of the worker threads
// holds at most half a megabyte.
constexpr std::size_t kKeptParserBytes = 32 * 1024;

std::optional<RenderBody> Split(simdjson::dom::parser& parser, std::string_view body) {
  simdjson::dom::object root;
  if (parser.parse(body.data(), body.size()).get(root) != simdjson::SUCCESS) return std::nullopt;
  RenderBody out{"", nlohmann::json::object()};
  bool has_definition = false;
  for (simdjson::dom::key_value_pair member : root) {
    if (member.key == "definition") {
      std::string_view text;
      if (member.value.get(text) != simdjson::SUCCESS) return std::nullopt;
      out.definition.assign(text);
      has_definition = true;
    } else {
      // Small values: written back as JSON text and read as nlohmann's, members named twice
      // keeping the last as nlohmann's own reading does.
      out.options[std::string(member.key)] = nlohmann::json::parse(simdjson::minify(member.value));
    }
  }
  if (!has_definition) return std::nullopt;
  return out;
}

}  // namespace

std::optional<RenderBody> ReadRenderBody(std::string_view body) {
  try {
    if (body.size() <= kKeptParserBytes) {
      thread_local simdjson::dom::parser kept;
      return Split(kept, body);
    }
    simdjson::dom::parser own;
    return Split(own, body);
  } catch (const std::exception&) {
    return std::nullopt;  // a value simdjson reads and nlohmann does not: the ordinary way decides
  }
}

}  // namespace brix::brixq
