# Sources and public headers of querybuilder/.
set(BRIX_QUERYBUILDER_HEADERS
  querybuilder/clause_catalogue.h
  querybuilder/xqb_definitions.h
)
set(BRIX_QUERYBUILDER_SOURCES
  querybuilder/clause_catalogue.cpp
)
