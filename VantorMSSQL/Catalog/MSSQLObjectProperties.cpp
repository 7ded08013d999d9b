#include "Catalog/MSSQLObjectProperties.h"

#include <QLocale>

namespace {

QString displayText(const KNValue &value)
{
    const bool isInteger = value.kind() == KNValue::Kind::Int32 || value.kind() == KNValue::Kind::Int64;
    return isInteger ? QLocale().toString(value.toInt64()) : value.displayText();
}

} // namespace

KNObjectPropertiesLoader MSSQLObjectProperties::loader(std::shared_ptr<const VantorDBC> settings,
                                                       const char *title,
                                                       const MSSQLCatalogReader::Values &values)
{
    return [settings = std::move(settings), title = QString::fromLatin1(title), values](KNError *error) {
        KNObjectProperties properties;
        *error = MSSQLCatalogReader::read(*settings, title, values, "mssql.databaseTree.properties",
                                          [&](const DatabaseResultSet &row) {
                                              const QStringList names = row.columnNames();
                                              for (qsizetype column = 0; column < names.size(); ++column) {
                                                  const KNValue value = row.objectForColumnIndex(column);
                                                  if (!value.isNull())
                                                      properties.append({names[column], displayText(value)});
                                              }
                                          });
        return *error ? KNObjectProperties() : properties;
    };
}
