// What brixq says about itself: the overview, each command's help, and hints for near misses.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace brix::brixq {

/// The overview printed by `brixq --help`: the commands, one line each.
std::string_view UsageText();

/// The help of one command (`brixq COMMAND --help`): its usage line, what it prints, its options
/// and two examples. "" for a name that is no command.
std::string CommandHelp(std::string_view command);

/// Every command name, in the order the overview lists them.
std::span<const std::string_view> CommandNames();

/// " (did you mean X?)" when one of `names` is close to `given` (begins with it, or is at most two
/// letters away), else ""; `prefix` goes before X ("--" for options).
std::string DidYouMean(std::string_view given, std::span<const std::string_view> names,
                       std::string_view prefix = {});

}  // namespace brix::brixq
