// One table of a query: its database name, description and fields.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "persistence/ixml_prop_bag.h"
#include "querybuilder/model_collection.h"
#include "querybuilder/xqb_fields.h"

namespace brix {

/// A table of a query. `DBName` is stored normalised; `Fields` starts as a new empty collection.
class xqb_Table : public IndexedItem, public IXMLPropBag {
 public:
  static std::shared_ptr<xqb_Table> Create();
  xqb_Table(const xqb_Table&) = delete;
  xqb_Table& operator=(const xqb_Table&) = delete;

  std::string TypeName() const override;

  // Persistence in a query definition document (defined with the document's code).
  void WriteProperties(XMLPropBag& PropertyBag) override;
  void ReadProperties(XMLPropBag& PropertyBag) override;

  /// Database name as stored: the setter stores `NormalizeDBName(value)`. Default "".
  const std::string& DBName() const { return db_name_; }
  void SetDBName(std::string_view value);

  const std::string& Description() const { return description_; }
  void SetDescription(std::string value) { description_ = std::move(value); }

  /// The table's fields (the held collection itself). Raises 91 when a null collection was
  /// assigned.
  std::shared_ptr<xqb_Fields> Fields() const;
  /// Stores the given collection itself (shared with the caller); null makes the getter raise 91.
  void SetFields(std::shared_ptr<xqb_Fields> value) { fields_ = std::move(value); }

  const std::string& Tag() const { return tag_; }
  void SetTag(std::string value) { tag_ = std::move(value); }

 private:
  xqb_Table();

  std::shared_ptr<xqb_Fields> fields_;
  std::string db_name_;
  std::string description_;
  std::string tag_;
};

}  // namespace brix
