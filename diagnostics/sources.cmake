# Sources and public headers of diagnostics/.
set(BRIX_DIAGNOSTICS_HEADERS
)
set(BRIX_DIAGNOSTICS_SOURCES
)
