#include "VantorMSSQL/Catalog/CatalogQuestions.h"

#include "Foundation/KNFormat.h"

namespace {

CatalogQuestion question(const char *title,
                         std::initializer_list<std::pair<const char *, const char *>> values = {})
{
    CatalogQuestion result{QString::fromUtf8(title)};
    for (const auto &[placeholder, value] : values)
        result.values.insert(QString::fromUtf8(placeholder), QString::fromUtf8(value));
    return result;
}

CatalogQuestion varying(const char *title)
{
    CatalogQuestion result = question(title);
    result.varies = true;
    return result;
}

} // namespace

QString CatalogQuestion::name() const
{
    QStringList parts;
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        parts.append(KNFormat("%@=%@", value.key(), *value));
    return parts.join(QLatin1Char(' '));
}

const QList<CatalogQuestion> &catalogQuestions()
{
    static const QList<CatalogQuestion> questions{
        question("General_ListDatabases"),     question("General_FindDefaultUserSchema"),
        varying("DatabaseTree_ServerVersion"), question("IsSQLServerAgentAvailable"),
        varying("Script_ListConnections"),
    };
    return questions;
}
