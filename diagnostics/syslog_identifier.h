// The identifiers the system log is opened with, kept for the life of the process.
#pragma once

#include <string_view>

namespace brix {

/// `title` as a NUL-terminated identifier for `openlog`, which keeps the pointer and reads it on
/// every `syslog` call from any thread. Each distinct title is stored once and never changed or
/// freed, so a pointer handed out stays valid and keeps its text while other threads open the
/// log under other titles. Thread-safe.
const char* SyslogIdentifier(std::string_view title);

}  // namespace brix
