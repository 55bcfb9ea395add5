// Database-name normalisation: brackets around names with blanks, part by part for dotted names.
#pragma once

#include <string>
#include <string_view>

namespace brix {

/// The name tables and fields store for an assigned `DBName`.
/// Without ".": trimmed of blanks, then enclosed in "[...]" when it holds a blank, no "(" and does
/// not begin with "[" ('Order Date' -> '[Order Date]', 'Sum(Amount) x' stays).
/// With ".": each part between dots (empty parts kept) is trimmed when it holds no blank, or
/// holds "(", ")" or "["; otherwise it is enclosed untrimmed ('dbo. Order' -> 'dbo.[ Order]').
std::string NormalizeDBName(std::string_view name);

}  // namespace brix
