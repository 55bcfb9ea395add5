// Where the logger's file lives by default, and how a report is appended to it without trusting
// what stands at its path.
#pragma once

#include <string>
#include <string_view>

namespace brix {

/// The folder of the default log file: the executable's folder when the user may write there
/// (or it does not exist: then it is the host's own choice and stays as given); otherwise the
/// user's state folder, `xdg_state_home` when it is an absolute path, else `home` +
/// "/.local/state"; the executable's folder again when neither is known. Null means unset.
std::string DefaultLogFolder(const std::string& exe_folder, bool exe_folder_writable,
                             const char* xdg_state_home, const char* home);

/// `DefaultLogFolder` for this process and its environment. A state folder chosen is created
/// (mode 0700) when missing; a failure to create it is left to the writes to meet.
std::string DefaultLogFolder(const std::string& exe_folder);

/// Appends `text` and CR LF to the file at `path`, never following a symbolic link there and
/// never passing the descriptor to a child process. A new file is made with mode 0600. A
/// regular file the user owns but may not write to gets owner write permission back (through
/// the open descriptor, so the check and the change concern the same file); anything else that
/// is not a regular file, or a file of another user that refuses writing, is left alone.
/// Every failure is ignored.
void AppendToLogFile(const std::string& path, std::string_view text);

}  // namespace brix
