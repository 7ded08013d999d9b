#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

#include <QCollator>

namespace MSSQLTreeCatalog {

const MSSQLDatabaseConnectionDetails &settings(const KNDatabaseTreeEntry &entry)
{
    return static_cast<const MSSQLDatabaseConnectionDetails &>(*entry.databaseConnectionDetails());
}

QString text(const KNDatabaseTreeEntry &entry, const char *title)
{
    KNDatabaseTreeEntry::Settings details = entry.databaseConnectionDetails();
    for (auto above = entry.parent(); above; above = above->parent())
        details = above->databaseConnectionDetails();
    return details->queryLoader()->queryByTitle(QString::fromLatin1(title));
}

QString filled(QString text, std::initializer_list<std::pair<const char *, QString>> names)
{
    for (const auto &[placeholder, name] : names) {
        QString value = name;
        value.replace(QLatin1Char('\''), QLatin1String("''"));
        text.replace(QLatin1String(placeholder), value);
    }
    return text;
}

KNError wrapped(const KNError &error, const char *domain)
{
    return KNError(QString::fromLatin1(domain), error.code(), error.localizedDescription(), error.userInfo());
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
