#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "Catalog/MSSQLParameterRecord.h"

/// Statements on an object for the user to complete. Names are quoted as required; comments name the types. A
/// statement that changes rows changes none until its values and conditions are filled in.
namespace MSSQLStatementTemplate {

/// SELECT of all columns.
QString select(const QString &schema, const QString &object, const QList<MSSQLColumnRecord> &columns);
/// INSERT of a row with every writable column.
QString insert(const QString &schema, const QString &object, const QList<MSSQLColumnRecord> &columns);
/// UPDATE of every writable column of the row with a primary key.
QString update(const QString &schema, const QString &object, const QList<MSSQLColumnRecord> &columns);
/// EXECUTE with every parameter. Output parameters get variables, whose values are selected afterwards.
QString execute(const QString &schema, const QString &procedure,
                const QList<MSSQLParameterRecord> &parameters);

} // namespace MSSQLStatementTemplate
