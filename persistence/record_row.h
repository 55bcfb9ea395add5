// The walk over a record's rows, writing or reading each key with no default, shared by the
// records.
#pragma once

#include <vector>

#include "persistence/property_row.h"
#include "runtime/error.h"
#include "runtime/property_bag.h"

namespace brix {

/// Writes the row's value under its name with no default, so that every key is present.
template <class Record>
void WriteRow(const PropertyRow<Record>& row, const Record& record, PropertyBag& bag) {
  bag.WriteProperty(row.name, row.get(record));
}

/// Reads the row's name with no default (a missing key raises 327) into its property.
template <class Record>
void ReadRow(const PropertyRow<Record>& row, Record& record, PropertyBag& bag) {
  row.set(record, bag.ReadProperty(row.name));
}

/// How a record reports a failure part-way through its rows: raised again from `source` with
/// `text` and the trapped reason. Without one, a failure reaches the caller unchanged.
struct RecordTrap {
  const char* source;
  const char* text;
};

/// Writes (`writing`) or reads every row of `rows` in order, the one body of every record's
/// persistence.
template <class Record>
void PersistRows(const std::vector<PropertyRow<Record>>& rows, Record& record, PropertyBag& bag,
                 bool writing, const RecordTrap* trap = nullptr) {
  try {
    for (const PropertyRow<Record>& row : rows) {
      if (writing) {
        WriteRow(row, record, bag);
      } else {
        ReadRow(row, record, bag);
      }
    }
  } catch (const Error& trapped) {
    if (!trap) throw;
    Raise(trapped.Number(), trap->source, TrappedDescription(trap->text, "Reason: ", trapped));
  }
}

/// Lets a property bag read the records (`clsUser`, `clsQSOM_DM`) back as new instances. Each
/// class is registered once, at the first call; the records and the envelope that carries them
/// call this, so that linking any of them makes the records readable.
void RegisterRecordClasses();

}  // namespace brix
