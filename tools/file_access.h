// The files brixq reads: the definition document and the default SQLite database.
#pragma once

#include <string>

namespace brix::brixq {

/// The whole content of `path`, or of standard input for "-", as bytes. Raises `kErrFileNotFound`
/// for a path that does not exist and `kErrFileAccess` for one that cannot be read.
std::string ReadDefinition(const std::string& path);

/// The bundled sample database: share/brixobjects4/sample.db beside the installed command's
/// folder, else examples/sample.db of the build tree the command was built in. Raises
/// `kErrFileNotFound` when neither exists.
std::string DefaultDatabasePath();

}  // namespace brix::brixq
