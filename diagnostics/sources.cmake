# Sources and public headers of diagnostics/.
set(BRIX_DIAGNOSTICS_HEADERS
  diagnostics/app.h
  diagnostics/host_identity.h
  diagnostics/logger.h
  diagnostics/logger_factory.h
  diagnostics/string_builder.h
)
set(BRIX_DIAGNOSTICS_SOURCES
  diagnostics/app.cpp
  diagnostics/error_trace.cpp
  diagnostics/host_identity.cpp
  diagnostics/logger.cpp
  diagnostics/logger_factory.cpp
  diagnostics/string_builder.cpp
)
