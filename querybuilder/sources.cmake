# Sources and public headers of querybuilder/.
set(BRIX_QUERYBUILDER_HEADERS
  querybuilder/clause_catalogue.h
  querybuilder/condition_index.h
  querybuilder/indexed_collection.h
  querybuilder/xqb_condition.h
  querybuilder/xqb_conditions.h
  querybuilder/xqb_definitions.h
  querybuilder/xqb_module.h
)
set(BRIX_QUERYBUILDER_SOURCES
  querybuilder/clause_catalogue.cpp
  querybuilder/condition_index.cpp
  querybuilder/indexed_collection.cpp
  querybuilder/xqb_condition.cpp
  querybuilder/xqb_conditions.cpp
  querybuilder/xqb_module.cpp
)
