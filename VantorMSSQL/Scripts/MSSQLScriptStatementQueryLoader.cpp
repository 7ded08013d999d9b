#include "Scripts/MSSQLScriptStatementQueryLoader.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLStatementTemplate.h"

namespace {

constexpr auto Domain = "mssql.queryLoader.statement";

} // namespace

QString MSSQLScriptStatementQueryLoader::execution(const VantorDBC &details, KNError *error) const
{
    const auto parameters =
        MSSQLCatalogReader::records<MSSQLParameterRecord>(details, m_schema, m_object, Domain, error);
    return *error ? QString() : MSSQLStatementTemplate::execute(m_schema, m_object, parameters);
}

QString MSSQLScriptStatementQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    if (m_statement == Statement::Execute)
        return execution(details, &report->failure);
    const auto columns =
        MSSQLCatalogReader::records<MSSQLColumnRecord>(details, m_schema, m_object, Domain, &report->failure);
    if (report->failure)
        return {};
    if (columns.isEmpty()) {
        report->failure = KNError(
            QString::fromLatin1(Domain), 0,
            KNFormat("%@.%@ was not found, or you have no right to see its columns.", m_schema, m_object));
        return {};
    }
    if (m_statement == Statement::Insert)
        return MSSQLStatementTemplate::insert(m_schema, m_object, columns);
    if (m_statement == Statement::Update)
        return MSSQLStatementTemplate::update(m_schema, m_object, columns);
    return MSSQLStatementTemplate::select(m_schema, m_object, columns);
}
