# Sources and public headers of querybuilder/.
set(BRIX_QUERYBUILDER_HEADERS
)
set(BRIX_QUERYBUILDER_SOURCES
)
