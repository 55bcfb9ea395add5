// Placeholders in the style of Python's format-style database clients (psycopg2, psycopg).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace brix::python {

/// A statement whose placeholders were rewritten, and for each `%s` in order the index (from 0)
/// of the parameter it binds.
struct FormatStyleStatement {
  std::string text;
  std::vector<std::size_t> order;
};

/// Rewrites the `$n` placeholders of a PostgreSQL statement as `%s` and doubles every `%`, which
/// format-style clients read as their own. Placeholders are only sought outside quoted text and
/// quoted names, where host-written SQL could hold a `$`; a placeholder numbered past
/// `parameter_count` stays as written.
FormatStyleStatement ToFormatStyle(const std::string& text, std::size_t parameter_count);

}  // namespace brix::python
