# The fuzz targets, one fuzz/<name>.cpp each. Their seeds live in fuzz/corpus/<name>/, the inputs
# that once crashed in fuzz/regressions/<name>/, a dictionary (optional) in fuzz/dict/<name>.dict.
set(BRIX_FUZZ_TARGETS
  load_xml_def_fuzz
  text_conversions_fuzz
  base64_fuzz
  string_builder_fuzz
  error_trace_fuzz
  property_bag_fuzz
  envelope_fuzz
  parameterized_statement_fuzz
)
