#include "Catalog/MSSQLColumnRecord.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "TableDesign/MSSQLTableDesign.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QRegularExpression>

#include <optional>

namespace DesignRoundTripTests {

using Kind = KNColumnEdit::Kind;
using Property = KNColumnEdit::Property;

namespace {

/// An edit and the one that takes it back.
struct ThereAndBack
{
    KNColumnEdit there;
    KNColumnEdit back;
};

KNColumnEdit editOf(const QString &column, Property property, const QVariant &value)
{
    return {Kind::Change, column, {{property, value}}};
}

/// A type that holds all values of this one, and from which all go back; null if the test knows none. The
/// values of binary(n) get zeros at their end and do not go back.
QString widerType(const QString &type)
{
    static const QMap<QString, QString> wider{
        {QStringLiteral("tinyint"), QStringLiteral("smallint")},
        {QStringLiteral("smallint"), QStringLiteral("int")},
        {QStringLiteral("int"), QStringLiteral("bigint")},
        {QStringLiteral("smallmoney"), QStringLiteral("money")},
        {QStringLiteral("real"), QStringLiteral("float")},
        {QStringLiteral("time(0)"), QStringLiteral("time(3)")},
        {QStringLiteral("datetimeoffset(0)"), QStringLiteral("datetimeoffset(3)")},
    };
    static const QRegularExpression sized(
        QStringLiteral("^(n?varchar|n?char|varbinary|decimal|numeric)\\((\\d+)(.*)$"));
    if (wider.contains(type))
        return wider[type];
    const QRegularExpressionMatch match = sized.match(type);
    return match.hasMatch() ? KNFormat("%@(%@%@", match.captured(1),
                                       QString::number(match.captured(2).toInt() + 1), match.captured(3))
                            : QString();
}

std::optional<ThereAndBack> change(const MSSQLColumnRecord &column, Property property)
{
    const QString &name = column.columnName;
    switch (property) {
    case Property::Name: {
        const QString other = name.left(100) + QStringLiteral(" [2]'");
        return ThereAndBack{editOf(name, property, other), editOf(other, property, name)};
    }
    case Property::Type: {
        const QString wider = widerType(column.displayType());
        if (wider.isNull() || column.isComputed)
            return std::nullopt;
        return ThereAndBack{editOf(name, property, wider), editOf(name, property, column.displayType())};
    }
    case Property::Nullable:
        if (column.isComputed)
            return std::nullopt;
        return ThereAndBack{editOf(name, property, !column.isNullable),
                            editOf(name, property, column.isNullable)};
    case Property::Default:
        if (!column.isWritable())
            return std::nullopt;
        return ThereAndBack{editOf(name, property, QStringLiteral("NULL")),
                            editOf(name, property, column.defaultValue)};
    default:
        if (column.isPrimaryKey || column.isNullable || column.isComputed)
            return std::nullopt;
        return ThereAndBack{editOf(name, property, true), editOf(name, property, false)};
    }
}

class DesignRoundTrip : public testing::TestWithParam<const char *>
{
protected:
    DesignRoundTrip()
        : m_settings(WireTest::settings(m_server.port()))
    {
        m_settings->setDatabase(QString::fromLatin1(GetParam()));
        m_settings->setConnectionId(
            KNFormat("round-trip-%@-%@", GetParam(), QString::number(m_server.port())));
        m_client = WireTest::connectedClient(m_settings);
    }
    ~DesignRoundTrip() override { VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients(); }

    QList<MSSQLDesignedTable> tables()
    {
        KNError error;
        const auto rows = m_client->executeQuery(
            QStringLiteral("SELECT SCHEMA_NAME(schema_id), name FROM sys.tables ORDER BY 1, 2"), &error);
        QList<MSSQLDesignedTable> tables;
        while (rows && rows->next())
            tables.append({rows->stringForColumnIndex(0), rows->stringForColumnIndex(1)});
        return tables;
    }
    QString scriptOf(const MSSQLDesignedTable &table)
    {
        return ScriptTest::textOf(
            std::make_shared<MSSQLScriptCreateTableQueryLoader>(table.name, table.schema), *m_settings);
    }
    /// Makes the edit; the first error of the server, if there is one.
    KNError make(const MSSQLDesignedTable &table, const KNColumnEdit &edit)
    {
        KNError error;
        MSSQLTableDesign design(table, m_settings);
        const QList<KNDesignStep> steps = design.steps(edit, true, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        for (const KNDesignStep &step : steps)
            if (KNError failure = WireTest::runScript(*m_client, step.script))
                return failure;
        return error;
    }
    /// Makes the same kind of edit in all columns, and takes back what the server accepted. Returns their
    /// number.
    int goThereAndBack(const MSSQLDesignedTable &table, Property property)
    {
        KNError error;
        const auto columns = MSSQLCatalogReader::records<MSSQLColumnRecord>(*m_settings, table.schema,
                                                                            table.name, "test", &error);
        QList<KNColumnEdit> back;
        for (const MSSQLColumnRecord &column : columns) {
            const auto edit = change(column, property);
            if (edit && !make(table, edit->there))
                back.prepend(edit->back);
        }
        for (const KNColumnEdit &edit : back) {
            const KNError failure = make(table, edit);
            EXPECT_FALSE(failure) << edit.column.toStdString() << ": "
                                  << failure.localizedDescription().toStdString();
        }
        return static_cast<int>(back.size());
    }
    void expectTheSameTablesAfter(Property property, int atLeast)
    {
        int count = 0;
        for (const MSSQLDesignedTable &table : tables()) {
            SCOPED_TRACE(table.exactPath().toStdString());
            const QString before = scriptOf(table);
            ASSERT_FALSE(before.isEmpty());
            count += goThereAndBack(table, property);
            EXPECT_EQ(scriptOf(table), before);
        }
        EXPECT_GE(count, atLeast);
    }

    const SampleServerFixture m_server;
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings;
    std::unique_ptr<MSSQLClient> m_client;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Databases, DesignRoundTrip, testing::Values("shop", "library"),
                         [](const auto &test) { return std::string(test.param); });

TEST_P(DesignRoundTrip, OfNamesKeepsEveryTable)
{
    expectTheSameTablesAfter(Property::Name, 10);
}

TEST_P(DesignRoundTrip, OfTypesKeepsEveryTable)
{
    expectTheSameTablesAfter(Property::Type, 5);
}

TEST_P(DesignRoundTrip, OfNullabilityKeepsEveryTable)
{
    expectTheSameTablesAfter(Property::Nullable, 5);
}

TEST_P(DesignRoundTrip, OfDefaultsKeepsEveryTable)
{
    expectTheSameTablesAfter(Property::Default, 10);
}

TEST_P(DesignRoundTrip, OfPrimaryKeysKeepsEveryTable)
{
    expectTheSameTablesAfter(Property::Primary, 1);
}

TEST_P(DesignRoundTrip, OfAnAddedColumnKeepsEveryTable)
{
    const QString name = QStringLiteral("an [added] column's");
    for (const MSSQLDesignedTable &table : tables()) {
        SCOPED_TRACE(table.exactPath().toStdString());
        const QString before = scriptOf(table);
        const KNError added = make(table, {Kind::Add, name, {{Property::Type, QStringLiteral("money")}}});
        EXPECT_FALSE(added) << added.localizedDescription().toStdString();
        EXPECT_NE(scriptOf(table), before);
        const KNError dropped = make(table, {Kind::Drop, name, {}});
        EXPECT_FALSE(dropped) << dropped.localizedDescription().toStdString();
        EXPECT_EQ(scriptOf(table), before);
    }
}

} // namespace DesignRoundTripTests
