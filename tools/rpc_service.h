// The envelope endpoint: a call envelope in, an answering envelope out, for class
// "Catalog.Queries".
#pragma once

#include <string>

#include "tools/catalog_service.h"
#include "tools/failure_reporter.h"

namespace brix::brixq {

/// Procedures of "Catalog.Queries":
/// - ListQueries([Search], [Offset], [Limit]): Retval the number of records returned, "Total"
///   the number matching, "Query1".."QueryN" the records (clsQSOM_DM, without QueryDef).
/// - LoadQuery(ID): Retval the record (clsQSOM_DM), "Version" its version.
/// - SaveQuery(Record: clsQSOM_DM, [Overwrite], [Version]): Retval the new version. Replacing
///   needs the version read, or Overwrite True.
/// - RenderSQL(QueryDef, [TopRecords]): Retval the SELECT statement.
/// The answer carries the caller's class, procedure and session. Any failure - bytes that are no
/// envelope, an unknown class or procedure, a refused write - is answered in ErrorNo,
/// ErrorSource and ErrorDescription, and reported to `reporter`.
class RpcService {
 public:
  RpcService(CatalogService& catalog, FailureReporter& reporter)
      : catalog_(catalog), reporter_(reporter) {}

  /// The answer to the envelope `bytes` (compressed or not; the answer is compressed likewise).
  /// `may_write` says whether the caller may run SaveQuery.
  std::string Handle(const std::string& bytes, bool may_write, const std::string& user);

 private:
  CatalogService& catalog_;
  FailureReporter& reporter_;
};

}  // namespace brix::brixq
