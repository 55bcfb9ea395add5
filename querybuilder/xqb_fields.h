// The fields of one table: a keyed collection by stored DBName, with the existence test.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "querybuilder/model_collection.h"
#include "querybuilder/xqb_field.h"

namespace brix {

template <class T>
class NameIndex;

/// A table's fields in insertion order, keyed by each field's stored (normalised) `DBName`.
/// Key lookup ignores letter case; the existence test does not.
class xqb_Fields : public ModelCollection<xqb_Field, NameIndex<xqb_Field>> {
 public:
  static std::shared_ptr<xqb_Fields> Create();

  std::string TypeName() const override { return "xqb_Fields"; }

  /// Creates a field with `DBName` = the normalised name, `Alias` and `Caption` = `db_name` as
  /// given, adds it under its stored `DBName` and returns it. Raises 2000 "[Add Field]" when
  /// `FieldExists(db_name)`; a name equal to a held key in all but letter case or normalisation
  /// ('Order Date' twice) passes that test and fails with the collection's 457.
  std::shared_ptr<xqb_Field> Add(std::string_view db_name);

  /// Adds `field` itself under its `DBName`. Raises 2000 "[AddObjectField]" when
  /// `FieldExists(field->DBName())`, 91 for null.
  void AddObjectField(std::shared_ptr<xqb_Field> field);

  /// True when a held field's `DBName` equals `field_name` exactly (case-sensitive, the argument
  /// is not normalised). A search past position 32767 without a match raises 6.
  bool FieldExists(std::string_view field_name);

 private:
  friend class xqb_Query;  // builds field lists in which one name may occur twice

  xqb_Fields() = default;

  /// Adds `field` under its `DBName`, or without a key when that key is taken.
  void AddListed(std::shared_ptr<xqb_Field> field);
};

}  // namespace brix
