#pragma once

#include "Engine/Catalog/CatalogTable.h"

namespace SampleServer {

/// A row of sys.objects: an object with its own definition, or a constraint.
struct ObjectRow
{
    std::int64_t id = 0, parent = 0;
    std::string name;
    int schema = 1;
    std::string_view code; ///< "U", "V", "PK" ...
    DateTimeValue created, modified;
    ObjectPtr object; ///< owns the objects that the pointers below refer to

    const Table *table = nullptr;
    const Module *module = nullptr;
    const TableIndex *index = nullptr;
    const ForeignKey *key = nullptr;
    const CheckConstraint *check = nullptr;
    const TableColumn *column = nullptr; ///< of a default

    std::string definition() const; ///< empty if there is none or it is encrypted
    bool isEncrypted() const;
    bool isDisabled() const;
    bool isNotTrusted() const;
    bool isSystemNamed() const;
    int parentColumn() const;
    std::string synonymTarget() const;
};

std::vector<ObjectRow> listObjects(const CatalogContext &context);
/// Returns the database's objects and table types.
std::vector<ObjectPtr> allObjects(const CatalogContext &context);
/// "USER_TABLE" for "U".
std::string typeDescription(std::string_view code);
/// Pads the code with blanks to two characters, as char(2).
std::string padded(std::string_view code);
/// The code of a kind of object.
std::string_view codeOf(ObjectKind kind);

} // namespace SampleServer
