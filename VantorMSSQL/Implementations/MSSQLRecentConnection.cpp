#include "Implementations/MSSQLRecentConnection.h"

#include "Foundation/KNAssert.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Procedures/MSSQLProcedureValues.h"

namespace {

const QString Database = QStringLiteral("database");
const QString AuthenticationType = QStringLiteral("dumbAuthenticationType");

std::unique_ptr<SQLRecentConnectionList> &listInstance()
{
    static std::unique_ptr<SQLRecentConnectionList> instance;
    return instance;
}

} // namespace

MSSQLRecentConnection::MSSQLRecentConnection() = default;
MSSQLRecentConnection::~MSSQLRecentConnection() = default;

SQLRecentConnectionList &MSSQLRecentConnection::list()
{
    if (!listInstance()) {
        listInstance() =
            std::make_unique<SQLRecentConnectionList>(QStringLiteral("MSSQLRecentConnections"), [] {
                return std::make_shared<MSSQLRecentConnection>();
            });
        listInstance()->load();
    }
    return *listInstance();
}

void MSSQLRecentConnection::forgetList()
{
    listInstance().reset();
}

QList<SQLRecentConnectionPtr> MSSQLRecentConnection::RecentConnections()
{
    return list().connections();
}

void MSSQLRecentConnection::UpdateRecentConnection(const SQLRecentConnectionPtr &entry)
{
    list().update(entry);
}

void MSSQLRecentConnection::RemoveConnection(const SQLRecentConnectionPtr &entry)
{
    if (list().isDropped())
        return;
    KNAssert(list().contains(entry), "Connection is not available.", "Implementations/MSSQLRecentConnection");
    MSSQLProcedureValues::forget(entry->connectionId);
    list().remove(entry);
}

void MSSQLRecentConnection::removeAllRecentConnections()
{
    for (const SQLRecentConnectionPtr &entry : list().connections())
        MSSQLProcedureValues::forget(entry->connectionId);
    list().removeAll();
}

SQLRecentConnectionPtr MSSQLRecentConnection::copy() const
{
    return SQLRecentConnectionPtr(new MSSQLRecentConnection(*this));
}

void MSSQLRecentConnection::copyFields(const SQLRecentConnection &from)
{
    SQLRecentConnection::copyFields(from);
    const auto *const other = dynamic_cast<const MSSQLRecentConnection *>(&from);
    KNAssert(other, "Invalid class.", "Implementations/MSSQLRecentConnection");
    database = other->database;
    dumbAuthenticationType = other->dumbAuthenticationType;
}

VantorDBCPtr MSSQLRecentConnection::createDatabaseConnectionDetails() const
{
    auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    fill(*details);
    details->setDatabase(database);
    return details;
}

QVariantMap MSSQLRecentConnection::encodeWithCoder() const
{
    QVariantMap coder = SQLRecentConnection::encodeWithCoder();
    if (!database.isNull())
        coder.insert(Database, database);
    coder.insert(AuthenticationType, static_cast<qint64>(dumbAuthenticationType));
    return coder;
}

void MSSQLRecentConnection::initWithCoder(const QVariantMap &coder)
{
    SQLRecentConnection::initWithCoder(coder);
    database = coder.value(Database).toString();
    dumbAuthenticationType = coder.value(AuthenticationType).toInt();
}
