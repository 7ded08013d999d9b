#include "Implementations/MSSQLErrorRange.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

struct Where
{
    quint64 line = 1;
    const char *procedure = "";
};

/// The marked part of the batch, which begins at position 100 of the text.
QString marked(const char *message, const QString &batch, const Where &where)
{
    DatabaseMessage record;
    record.type = DatabaseMessage::ServerMessage;
    record.msgtext = QString::fromUtf8(message);
    record.line = where.line;
    record.procname = QString::fromUtf8(where.procedure);
    const KNRange range = MSSQLErrorRange::atLine(record, {batch, {100, batch.size()}, 10});
    return range.isFound() ? batch.mid(range.location - 100, range.length) : QString();
}

} // namespace

TEST(ErrorRange, OfAWholeBatchReadsCommentsWithoutNesting)
{
    const QString batch = QStringLiteral("/* /* */ x */ x");
    DatabaseMessage record;
    record.type = DatabaseMessage::ServerMessage;
    record.msgtext = QStringLiteral("Invalid column name 'x'.");
    record.line = 1;
    const KNQueryDetails details{batch, {100, batch.size()}, 10};
    EXPECT_FALSE(MSSQLErrorRange::inBatch(record, details).isFound());
    EXPECT_EQ(MSSQLErrorRange::atLine(record, details), (KNRange{114, 1})) << "the server nests them";
}

TEST(ErrorRange, IsTheWordThatOccursOnceOnTheLine)
{
    const QString batch = QStringLiteral("SELECT id AS x\nSELECT id, name\nSELECT id + id");
    DatabaseMessage record;
    record.type = DatabaseMessage::ServerMessage;
    record.msgtext = QStringLiteral("Invalid column name 'id'.");
    record.line = 2;
    EXPECT_EQ(MSSQLErrorRange::atLine(record, {batch, {100, batch.size()}, 10}), (KNRange{122, 2}));
    EXPECT_EQ(marked("Invalid column name 'id'.", batch, {3}), QString());
    EXPECT_EQ(marked("Invalid column name 'id'.", batch, {99}), QString());
    EXPECT_EQ(marked("Invalid column name 'name'.", batch, {1}), QStringLiteral("name"))
        << "a server may name the line on which the statement begins";
    EXPECT_EQ(marked("Divide by zero.", batch, {1}), QString());
}

TEST(ErrorRange, OfAProcedureIsItsCall)
{
    const QString batch = QStringLiteral("PRINT 'p' -- p\nEXEC dbo.[P] 1");
    EXPECT_EQ(marked("Invalid column name 'x'.", batch, {1, "dbo.p"}), QStringLiteral("[P]"));
    EXPECT_EQ(marked("Divide by zero.", batch, {7, "P"}), QStringLiteral("[P]"));
    EXPECT_EQ(marked("Divide by zero.", batch, {7, "a_trigger"}), QString());
    EXPECT_EQ(marked("Divide by zero.", QStringLiteral("EXEC p EXEC p"), {7, "p"}), QString());
}

TEST(ErrorRange, OfADefinitionIsInItsText)
{
    const QString batch = QStringLiteral("-- new\nCREATE PROCEDURE p AS\nSELECT 1 FRM x\nRETURN 1 1");
    EXPECT_EQ(marked("Incorrect syntax near 'FRM'.", batch, {3, "p"}), QStringLiteral("FRM"));
    EXPECT_EQ(marked("Incorrect syntax near '1'.", batch, {4, "p"}), QStringLiteral("RETURN 1 1"));
}
