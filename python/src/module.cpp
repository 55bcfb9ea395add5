// The extension module brixobjects4._core; the package's __init__ re-exports it.
#include <pybind11/pybind11.h>

#include "diagnostics_binding.h"
#include "error_translation.h"
#include "python_values.h"
#include "query_binding.h"
#include "querybuilder/xqb_query.h"
#include "records_binding.h"

PYBIND11_MODULE(_core, module) {
  namespace python = brix::python;
  module.doc() = "Query definitions to SQL, WHERE, full-text and descriptions; records and codecs.";
  python::RegisterErrorTranslation();
  python::BindValueTypes(module);
  python::BindQueryModel(module);
  python::BindRecords(module);
  python::BindDiagnostics(module);
  module.attr("library_version") = brix::xqb_Query::Create()->GetVersion();
}
