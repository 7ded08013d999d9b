#include "Database/VantorDBC.h"

#include "Database/KNSyntaxCheck.h"
#include "Database/KNTableDesign.h"
#include "Import/KNDatabaseImportHelper.h"
#include "RowEditing/ResultSetViewControllerHelper.h"

VantorDBC::VantorDBC() = default;
VantorDBC::~VantorDBC() = default;

void VantorDBC::getHostAndPortForServer(const QString &server, quint16 *port, QString *host) const
{
    const QString text = server.trimmed();
    *host = text;

    qsizetype separator = -1;
    if (text.startsWith(QLatin1Char('['))) {
        const qsizetype closing = text.indexOf(QLatin1Char(']'));
        if (closing < 0)
            return;
        *host = text.mid(1, closing - 1);
        separator = closing + 1 < text.size() ? closing + 1 : -1;
    } else if (const qsizetype comma = text.lastIndexOf(QLatin1Char(',')); comma >= 0) {
        separator = comma;
        *host = text.left(separator).trimmed();
    } else if (text.count(QLatin1Char(':')) == 1) {
        separator = text.indexOf(QLatin1Char(':'));
        *host = text.left(separator).trimmed();
    }
    if (separator < 0)
        return;
    bool isNumber = false;
    const uint number = text.mid(separator + 1).trimmed().toUInt(&isNumber);
    if (isNumber && number > 0 && number <= 65535)
        *port = static_cast<quint16>(number);
}

const QStringList &VantorDBC::dataTypes() const
{
    static const QStringList none;
    return none;
}

std::unique_ptr<ResultSetViewControllerHelper> VantorDBC::createResultSetViewControllerHelper() const
{
    return std::make_unique<ResultSetViewControllerHelper>();
}

std::unique_ptr<KNDatabaseImportHelper> VantorDBC::createDatabaseImportHelper() const
{
    return nullptr;
}

std::shared_ptr<KNDatabaseScripter> VantorDBC::createDatabaseScripter() const
{
    return nullptr;
}

std::shared_ptr<KNQueryLoader> VantorDBC::createDefinitionLoader(const QStringList &) const
{
    return nullptr;
}

std::shared_ptr<KNQueryLoader> VantorDBC::createColumnsLoader(const QStringList &) const
{
    return nullptr;
}

std::unique_ptr<KNTableDesign> VantorDBC::createTableDesign(const QString &, KNError *error) const
{
    *error = KNTableDesign::refused(QStringLiteral("Tables of this kind of server cannot be designed."));
    return nullptr;
}

QStringList VantorDBC::riskyStatements(const QString &) const
{
    return {};
}

KNSyntaxCheckRules VantorDBC::syntaxCheckRules() const
{
    return {};
}

QString VantorDBC::startProtocolTrace() const
{
    return QString();
}

QString VantorDBC::quotedName(const QString &name) const
{
    QString inside = name;
    inside.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + inside + QLatin1Char('"');
}

QString VantorDBC::literal(const KNValue &value) const
{
    if (value.isNull())
        return QStringLiteral("NULL");
    if (value.isNumber())
        return value.displayText();
    if (value.kind() == KNValue::Kind::Bytes)
        return QStringLiteral("X'") + value.displayText().mid(2) + QLatin1Char('\'');
    QString text = value.displayText();
    text.replace(QLatin1Char('\''), QLatin1String("''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

bool VantorDBC::usesSameLogin(const VantorDBC &other) const
{
    return m_host == other.m_host && m_port == other.m_port && m_username == other.m_username &&
           m_password == other.m_password && m_sshTunnelModel == other.m_sshTunnelModel;
}

bool VantorDBC::opensSameSession(const VantorDBC &other) const
{
    return usesSameLogin(other) && m_database == other.m_database &&
           sessionParameters() == other.sessionParameters() && description() == other.description();
}
