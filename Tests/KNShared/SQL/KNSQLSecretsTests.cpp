#include "SQL/KNSQLSecrets.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

QString masked(const char *sql)
{
    return KNSQLWithoutSecrets(QString::fromUtf8(sql));
}

} // namespace

TEST(SQLSecrets, AreMaskedWhereverAPasswordIsGiven)
{
    EXPECT_EQ(
        masked("CREATE LOGIN a WITH PASSWORD = N'it''s; x' MUST_CHANGE, DEFAULT_DATABASE = [shop]"),
        QStringLiteral("CREATE LOGIN a WITH PASSWORD = '********' MUST_CHANGE, DEFAULT_DATABASE = [shop]"));
    EXPECT_EQ(masked("alter login a with password/* new */='x' old_password = 'y'"),
              QStringLiteral("alter login a with password/* new */='********' old_password = '********'"));
    EXPECT_EQ(masked("CREATE LOGIN a WITH PASSWORD = 0x0200AB HASHED"),
              QStringLiteral("CREATE LOGIN a WITH PASSWORD = '********' HASHED"));
    EXPECT_EQ(masked("CREATE MASTER KEY ENCRYPTION BY PASSWORD='k'; SELECT 'k'"),
              QStringLiteral("CREATE MASTER KEY ENCRYPTION BY PASSWORD='********'; SELECT 'k'"));
    EXPECT_EQ(masked("CREATE CREDENTIAL c WITH IDENTITY = 'i', SECRET = 's'"),
              QStringLiteral("CREATE CREDENTIAL c WITH IDENTITY = 'i', SECRET = '********'"));
    EXPECT_EQ(masked("EXEC sp_addlogin 'a', 'p'\nSELECT 'b'"),
              QStringLiteral("EXEC sp_addlogin '********', '********'\nSELECT 'b'"));
    EXPECT_EQ(masked("EXEC p @rmtpassword = 'x', @name = 'n'; set @pwd='y'"),
              QStringLiteral("EXEC p @rmtpassword = '********', @name = 'n'; set @pwd='********'"));
}

TEST(SQLSecrets, LeaveEverythingElseAsItIs)
{
    for (const char *sql : {"select 'password = ''x'''", "-- password = 'x'", "select Password, 'x' from t",
                            "select [password] = 'x'", "where Password <> 'x'", "", "select 1"})
        EXPECT_EQ(masked(sql), QString::fromUtf8(sql));
}
