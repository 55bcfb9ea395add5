// The catalogue's schema, its pooled connections, and the reads and compare-and-set writes.
#include "tools/catalog_store.h"

#include <charconv>

#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "tools/postgres_catalog_connection.h"
#include "tools/sqlite_catalog_connection.h"

namespace brix::brixq {
namespace {

constexpr const char* kTable = "brix_saved_queries";

std::string ColumnList() {
  std::string columns;
  for (const RecordProperty& property : RecordProperties()) {
    if (!columns.empty()) columns += ", ";
    columns += property.column;
  }
  return columns;
}

std::int64_t Whole(const std::optional<std::string>& text) {
  std::int64_t value = 0;
  if (text) std::from_chars(text->data(), text->data() + text->size(), value);
  return value;
}

// A record from a row of `version` then the given properties' columns.
StoredRecord RecordOfRow(const StoreRow& row, const std::vector<const RecordProperty*>& columns) {
  StoredRecord stored{clsQSOM_DM::Create(), Whole(row[0])};
  for (std::size_t i = 0; i < columns.size(); ++i) {
    WriteStoreText(*stored.record, *columns[i], row[i + 1].value_or(""));
  }
  return stored;
}

std::vector<const RecordProperty*> AllProperties() {
  std::vector<const RecordProperty*> all;
  for (const RecordProperty& property : RecordProperties()) all.push_back(&property);
  return all;
}

// LIKE pattern of "contains `text`", its wildcards taken literally (ESCAPE '\').
std::string ContainsPattern(const std::string& text) {
  std::string pattern = "%";
  for (char c : text) {
    if (c == '%' || c == '_' || c == '\\') pattern += '\\';
    pattern += c;
  }
  return pattern + "%";
}

// Rolls back unless committed; the connection is usable again either way.
class Transaction {
 public:
  explicit Transaction(CatalogConnection& connection) : connection_(connection) {
    connection_.BeginWrite();
  }
  ~Transaction() {
    if (done_) return;
    try {
      connection_.Execute("ROLLBACK", {});
    } catch (const Error&) {
      // Nothing to undo: the engine ended the transaction when the statement failed.
    }
  }
  void Commit() {
    connection_.Execute("COMMIT", {});
    done_ = true;
  }

 private:
  CatalogConnection& connection_;
  bool done_ = false;
};

}  // namespace

class CatalogStore::Lease {
 public:
  Lease(CatalogStore& store, std::unique_ptr<CatalogConnection> connection)
      : store_(store), connection_(std::move(connection)) {}
  Lease(const Lease&) = delete;
  Lease& operator=(const Lease&) = delete;
  ~Lease() {
    std::lock_guard lock(store_.mutex_);
    store_.idle_.push_back(std::move(connection_));
    store_.available_.notify_one();
  }
  CatalogConnection* operator->() { return connection_.get(); }
  CatalogConnection& operator*() { return *connection_; }

 private:
  CatalogStore& store_;
  std::unique_ptr<CatalogConnection> connection_;
};

std::unique_ptr<CatalogStore> CatalogStore::Open(const std::string& url, std::size_t connections) {
  Connect connect;
  if (url.starts_with("sqlite:")) {
    std::string path = url.substr(7);
    connect = [path] { return std::make_unique<SqliteCatalogConnection>(path); };
    // One writer at a time in SQLite anyway; one connection avoids waiting on its file lock.
    connections = 1;
  } else {
    connect = [url] { return std::make_unique<PostgresCatalogConnection>(url); };
  }
  auto store = std::make_unique<CatalogStore>(std::move(connect), connections);
  Lease lease = store->Acquire();
  store->CreateSchema(*lease);
  return store;
}

CatalogStore::CatalogStore(Connect connect, std::size_t connections)
    : connect_(std::move(connect)), capacity_(connections == 0 ? 1 : connections) {}

CatalogStore::Lease CatalogStore::Acquire() {
  std::unique_lock lock(mutex_);
  available_.wait(lock, [&] { return !idle_.empty() || open_ < capacity_; });
  if (!idle_.empty()) {
    auto connection = std::move(idle_.back());
    idle_.pop_back();
    return Lease(*this, std::move(connection));
  }
  ++open_;
  lock.unlock();
  try {
    return Lease(*this, connect_());
  } catch (...) {
    // The lease never existed: give its place back before the error goes on.
    std::lock_guard relock(mutex_);
    --open_;
    available_.notify_one();
    throw;
  }
}

void CatalogStore::CreateSchema(CatalogConnection& connection) {
  Transaction transaction(connection);
  connection.Execute("CREATE TABLE IF NOT EXISTS brix_catalog_schema (version INTEGER NOT NULL)");
  auto rows = connection.Query("SELECT max(version) FROM brix_catalog_schema");
  std::int64_t stored = rows.empty() ? 0 : Whole(rows[0][0]);
  if (stored > kCatalogSchemaVersion) {
    Raise(kErrInvalidProcedureCall, "brixq",
          "the catalogue was written by a newer brixq (schema " + std::to_string(stored) +
              ", this one reads " + std::to_string(kCatalogSchemaVersion) + ")");
  }
  std::string create = std::string("CREATE TABLE IF NOT EXISTS ") + kTable +
                       " (id TEXT PRIMARY KEY, version " + connection.BigIntType() + " NOT NULL";
  for (const RecordProperty& property : RecordProperties()) {
    if (std::string_view(property.column) == "id") continue;
    create += std::string(", ") + property.column +
              (property.kind == RecordProperty::Kind::kText ? " TEXT" : " INTEGER") + " NOT NULL";
  }
  connection.Execute(create + ")");
  connection.Execute(std::string("CREATE INDEX IF NOT EXISTS brix_saved_queries_name ON ") +
                     kTable + " (name, id)");
  if (stored == 0) {
    connection.Execute("INSERT INTO brix_catalog_schema (version) VALUES ($1)",
                       {std::int64_t{kCatalogSchemaVersion}});
  }
  transaction.Commit();
}

std::optional<StoredRecord> CatalogStore::Get(const std::string& id) {
  Lease lease = Acquire();
  auto rows =
      lease->Query("SELECT version, " + ColumnList() + " FROM " + kTable + " WHERE id = $1", {id});
  if (rows.empty()) return std::nullopt;
  return RecordOfRow(rows[0], AllProperties());
}

CatalogPage CatalogStore::List(const std::string& search, std::int64_t offset, std::int64_t limit) {
  static const std::vector<const RecordProperty*> kListed = [] {
    std::vector<const RecordProperty*> listed;
    for (const RecordProperty& property : RecordProperties()) {
      if (std::string_view(property.column) != "query_def") listed.push_back(&property);
    }
    return listed;
  }();
  std::string columns;
  for (const RecordProperty* property : kListed) columns += std::string(", ") + property->column;
  const std::string filter = std::string(" FROM ") + kTable +
                             " WHERE lower(name) LIKE lower($1) ESCAPE '\\'"
                             " OR lower(category) LIKE lower($1) ESCAPE '\\'";
  const StoreValue pattern = ContainsPattern(search);
  Lease lease = Acquire();
  CatalogPage page;
  page.total = Whole(lease->Query("SELECT count(*)" + filter, {pattern})[0][0]);
  auto rows =
      lease->Query("SELECT version" + columns + filter + " ORDER BY name, id LIMIT $2 OFFSET $3",
                   {pattern, limit, offset});
  for (const StoreRow& row : rows) page.items.push_back(RecordOfRow(row, kListed));
  return page;
}

std::vector<StoredRecord> CatalogStore::All() {
  Lease lease = Acquire();
  std::vector<StoredRecord> all;
  for (const StoreRow& row :
       lease->Query("SELECT version, " + ColumnList() + " FROM " + kTable + " ORDER BY id")) {
    all.push_back(RecordOfRow(row, AllProperties()));
  }
  return all;
}

std::optional<CatalogStore::State> CatalogStore::ReadState(CatalogConnection& connection,
                                                           const std::string& id) {
  auto rows = connection.Query(std::string("SELECT version, is_editable FROM ") + kTable +
                                   " WHERE id = $1" + connection.LockRowsClause(),
                               {id});
  if (rows.empty()) return std::nullopt;
  return State{Whole(rows[0][0]), Whole(rows[0][1]) != 0};
}

void CatalogStore::Check(const std::optional<State>& state, const std::string& id,
                         const WriteCondition& condition) const {
  using Reason = CatalogRefusal::Reason;
  if (!state) {
    if (condition.if_match) throw CatalogRefusal(Reason::kNotFound, "no record \"" + id + "\"");
    return;
  }
  if (condition.create_only) {
    throw CatalogRefusal(Reason::kExists, "the record \"" + id + "\" exists already");
  }
  if (!state->editable) {
    throw CatalogRefusal(Reason::kNotEditable, "the record \"" + id + "\" is not editable");
  }
  if (!condition.if_match && condition.require_match) {
    throw CatalogRefusal(Reason::kMatchRequired,
                         "the record \"" + id + "\" exists: send If-Match with its version");
  }
  if (condition.if_match && *condition.if_match != state->version) {
    throw CatalogRefusal(Reason::kStale, "the record \"" + id + "\" is at version " +
                                             std::to_string(state->version) + ", not " +
                                             std::to_string(*condition.if_match));
  }
}

std::int64_t CatalogStore::Put(const clsQSOM_DM& record, const WriteCondition& condition,
                               bool& created) {
  std::vector<StoreValue> values;
  values.reserve(RecordProperties().size() + 1);  // the properties, then the version
  for (const RecordProperty& property : RecordProperties()) {
    values.push_back(ReadStoreValue(record, property));
  }
  Lease lease = Acquire();
  Transaction transaction(*lease);
  std::optional<State> state = ReadState(*lease, record.ID());
  Check(state, record.ID(), condition);
  created = !state;
  std::int64_t version = state ? state->version + 1 : 1;
  values.push_back(version);
  std::string sql;
  const auto& properties = RecordProperties();
  if (created) {
    std::string placeholders;
    for (std::size_t i = 1; i <= values.size(); ++i) {
      placeholders += (i == 1 ? "$" : ", $") + std::to_string(i);
    }
    sql = std::string("INSERT INTO ") + kTable + " (" + ColumnList() + ", version) VALUES (" +
          placeholders + ") ON CONFLICT (id) DO NOTHING";
  } else {
    sql = std::string("UPDATE ") + kTable + " SET version = $" + std::to_string(values.size());
    for (std::size_t i = 1; i < properties.size(); ++i) {
      sql += std::string(", ") + properties[i].column + " = $" + std::to_string(i + 1);
    }
    sql += " WHERE id = $1";
  }
  // Another writer may have created the record since it was read (PostgreSQL locks no row
  // that does not exist yet): then nothing is inserted, and this writer lost.
  if (lease->Execute(sql, values) != 1) {
    throw CatalogRefusal(created ? CatalogRefusal::Reason::kExists : CatalogRefusal::Reason::kStale,
                         "the record \"" + record.ID() + "\" changed meanwhile");
  }
  transaction.Commit();
  return version;
}

void CatalogStore::Remove(const std::string& id, const WriteCondition& condition) {
  Lease lease = Acquire();
  Transaction transaction(*lease);
  std::optional<State> state = ReadState(*lease, id);
  if (!state) throw CatalogRefusal(CatalogRefusal::Reason::kNotFound, "no record \"" + id + "\"");
  Check(state, id, condition);
  lease->Execute(std::string("DELETE FROM ") + kTable + " WHERE id = $1", {id});
  transaction.Commit();
}

}  // namespace brix::brixq
