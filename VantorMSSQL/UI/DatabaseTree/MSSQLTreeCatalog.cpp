#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLObjectProperties.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"

#include <QCollator>

namespace MSSQLTreeCatalog {

const MSSQLDatabaseConnectionDetails &settings(const KNDatabaseTreeEntry &entry)
{
    return static_cast<const MSSQLDatabaseConnectionDetails &>(*entry.databaseConnectionDetails());
}

QString text(const KNDatabaseTreeEntry &entry, const char *title, const QMap<QString, QString> &values)
{
    KNDatabaseTreeEntry::Settings details = entry.databaseConnectionDetails();
    for (auto above = entry.parent(); above; above = above->parent())
        details = above->databaseConnectionDetails();
    return MSSQLCatalogReader::text(*details, QString::fromLatin1(title), values);
}

KNObjectPropertiesLoader objectProperties(const KNDatabaseTreeEntry &entry, const QString &schema,
                                          const QString &object)
{
    return MSSQLObjectProperties::loader(
        entry.databaseConnectionDetails(), "Properties_Object",
        {{QStringLiteral("SCHEMA"), schema}, {QStringLiteral("OBJECT"), object}});
}

void openDesigner(const KNDatabaseTreeEntry &entry)
{
    const auto section = entry.parent();
    const auto table = section ? section->parent() : nullptr;
    if (const auto helper = entry.contextHelper(); helper && table)
        helper->performAction(QStringLiteral("alterTable:"), table);
}

int compareNames(const QString &left, const QString &right)
{
    thread_local const QCollator collator = [] {
        QCollator ignoringCase;
        ignoringCase.setCaseSensitivity(Qt::CaseInsensitive);
        return ignoringCase;
    }();
    return collator.compare(left, right);
}

} // namespace MSSQLTreeCatalog
