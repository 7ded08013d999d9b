#pragma once

#include "QueryLoader/KNStatementPair.h"
#include "RowEditing/KNEditRowColumn.h"

#include <QList>
#include <QStringList>

#include <optional>

/// The INSERT of a new row in a grid, with every digit of its values. The corrected one does not change
/// QUOTED_IDENTIFIER. Pure; any thread.
class MSSQLGridInsert
{
public:
    /// Names without quotes. `columns` are those of the new row that have a value.
    MSSQLGridInsert(const QString &schema, const QString &table, QList<KNEditRowColumn> columns);

    KNStatementPair statement() const;
    /// Adds the row and reads it in the same batch, which alone knows the parts of the key that the server
    /// makes: an identity by SCOPE_IDENTITY(), which triggers do not disturb, and a default by evaluating its
    /// expression before. An empty pair if a part cannot be known so, such as NEWSEQUENTIALID(), which
    /// nothing but a default may call.
    KNStatementPair statementAndRead(const QList<KNEditRowColumn> &key,
                                     const QList<KNEditRowColumn> &read) const;

private:
    struct Item
    {
        QString name; ///< without quotes
        QString value;
    };

    std::optional<QString> conditionOf(const KNEditRowColumn &key, QStringList *declarations,
                                       QList<Item> *items) const;
    QList<Item> items() const;
    KNStatementPair insertOf(const QList<Item> &items) const;

    const QString m_schema;
    const QString m_table;
    const QList<KNEditRowColumn> m_columns;
};
