# Sources and public headers of persistence/.
set(BRIX_PERSISTENCE_HEADERS
)
set(BRIX_PERSISTENCE_SOURCES
)
