#include "TableDesign/MSSQLColumnDefaultScript.h"

#include "QueryLoader/KNQueryTemplate.h"
#include "TableDesign/MSSQLStatementCaution.h"

namespace {

QString filled(const QString &text, const MSSQLDesignedTable &table, const QString &column,
               const QString &newDefault)
{
    return KNQueryTemplate::filled(text, {{QStringLiteral("TABLE_SCHEMA"), table.schema},
                                          {QStringLiteral("TABLE_NAME"), table.name},
                                          {QStringLiteral("COLUMN_NAME"), column},
                                          {QStringLiteral("NEW_DEFAULT"), newDefault}});
}

/// The template without the step that turns double quotes into apostrophes.
QString takingDefaultAsItIs(QString text)
{
    return text.replace(QLatin1String("REPLACE(N'{NEW_DEFAULT}', N'\"', N'''')"),
                        QLatin1String("N'{NEW_DEFAULT}'"));
}

} // namespace

MSSQLColumnDefaultScript::MSSQLColumnDefaultScript(MSSQLDesignedTable table, Templates templates)
    : m_table(std::move(table))
    , m_templates(std::move(templates))
{
}

KNStatementPair MSSQLColumnDefaultScript::change(const QString &columnName, const QString &newDefault) const
{
    if (newDefault.isEmpty()) {
        const QString script = filled(m_templates.remove, m_table, columnName, QStringLiteral(""));
        return {script, script, {}};
    }
    MSSQLStatementCaution caution;
    if (newDefault.contains(QLatin1Char('"')))
        caution.add(MSSQLStatementCaution::tr(
            "This would store an apostrophe for each double quote in the default."));
    QString sent = newDefault;
    sent.replace(QLatin1Char('\''), QLatin1Char('"'));
    return {filled(m_templates.replace, m_table, columnName, sent),
            filled(takingDefaultAsItIs(m_templates.replace), m_table, columnName, newDefault),
            caution.text()};
}
