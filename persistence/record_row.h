// One persisted property of a record: its key and the member that holds it, with the writing and
// the reading (text, 32-bit integer or Boolean, converted as the platform converts) and the
// walk over a record's rows, shared by the records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "runtime/conversions.h"
#include "runtime/error.h"
#include "runtime/property_bag.h"

namespace brix {

template <class Record>
struct RecordRow {
  const char* key;
  std::variant<std::string Record::*, std::int32_t Record::*, bool Record::*> member;
};

/// Writes the row's member under its key with no default, so that every key is present.
template <class Record>
void WriteRow(const RecordRow<Record>& row, const Record& record, PropertyBag& bag) {
  std::visit([&](auto member) { bag.WriteProperty(row.key, Variant(record.*member)); }, row.member);
}

/// Reads the row's key with no default (a missing key raises 327) into its member.
template <class Record>
void ReadRow(const RecordRow<Record>& row, Record& record, PropertyBag& bag) {
  const Variant value = bag.ReadProperty(row.key);
  std::visit(
      [&](auto member) {
        using Held = std::remove_reference_t<decltype(record.*member)>;
        if constexpr (std::is_same_v<Held, std::string>) {
          record.*member = CStr(value);
        } else if constexpr (std::is_same_v<Held, std::int32_t>) {
          record.*member = CLng(value);
        } else {
          record.*member = CBool(value);
        }
      },
      row.member);
}

/// How a record reports a failure part-way through its rows: raised again from `source` with
/// `text` and the trapped reason. Without one, a failure reaches the caller unchanged.
struct RecordTrap {
  const char* source;
  const char* text;
};

/// Writes (`writing`) or reads every row of `rows` in order, the one body of every record's
/// persistence.
template <class Record, class Row>
void PersistRows(const Row* rows, std::size_t count, Record& record, PropertyBag& bag, bool writing,
                 const RecordTrap* trap = nullptr) {
  try {
    for (std::size_t i = 0; i < count; ++i) {
      if (writing) {
        WriteRow<Record>(rows[i], record, bag);
      } else {
        ReadRow<Record>(rows[i], record, bag);
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
