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

TEST(SQLSecrets, AreMaskedInArgumentsOfFunctionsThatTakeThem)
{
    EXPECT_EQ(masked("SELECT * FROM OPENROWSET('P', 's';'u';'p', 'SELECT 1') AS r WHERE a = 'b'"),
              QStringLiteral(
                  "SELECT * FROM OPENROWSET('********', '********';'********';'********', '********') AS "
                  "r WHERE a = 'b'"));
    EXPECT_EQ(masked("SELECT * FROM OPENDATASOURCE('P', 'Data Source=s;User ID=u;Password=p').d.dbo.t"),
              QStringLiteral("SELECT * FROM OPENDATASOURCE('********', '********').d.dbo.t"));
    EXPECT_EQ(masked("SELECT EncryptByPassPhrase ( N'p' , 'clear' ), 'x'"),
              QStringLiteral("SELECT EncryptByPassPhrase ( '********' , '********' ), 'x'"));
}

TEST(SQLSecrets, AreMaskedInAnySpellingOfTheirProcedures)
{
    EXPECT_EQ(masked("EXEC [master].dbo.[sp_AddLogin] 'a', 'p'"),
              QStringLiteral("EXEC [master].dbo.[sp_AddLogin] '********', '********'"));
    EXPECT_EQ(masked("\"sp_password\" NULL, N'p'"), QStringLiteral("\"sp_password\" NULL, '********'"));
    EXPECT_EQ(masked("update t set [password] = 'x', b = 'y'"),
              QStringLiteral("update t set [password] = '********', b = 'y'"));
}

TEST(SQLSecrets, AreMaskedInVariablesNamedLikePasswords)
{
    EXPECT_EQ(masked("DECLARE @pw nvarchar(20) = N'p', @name sysname = N'n'"),
              QStringLiteral("DECLARE @pw nvarchar(20) = '********', @name sysname = N'n'"));
    EXPECT_EQ(masked("SET @Passphrase = 'a' + 'b' SELECT 'c'"),
              QStringLiteral("SET @Passphrase = '********' + '********' SELECT 'c'"));
}

TEST(SQLSecrets, AreMaskedInsideOfTexts)
{
    EXPECT_EQ(masked("EXEC('CREATE LOGIN a WITH PASSWORD=''p'', CHECK_POLICY = OFF')"),
              QStringLiteral("EXEC('CREATE LOGIN a WITH PASSWORD=''********'', CHECK_POLICY = OFF')"));
    EXPECT_EQ(masked("SET @sql = N'EXEC(''ALTER LOGIN a WITH PASSWORD = ''''p'''''')'"),
              QStringLiteral("SET @sql = N'EXEC(''ALTER LOGIN a WITH PASSWORD = ''''********'''''')'"));
    EXPECT_EQ(masked("WITH (LOCATION = 'l', CONNECTION_OPTIONS = 'Server=s;UID=u;PWD=p q;Database=d')"),
              QStringLiteral(
                  "WITH (LOCATION = 'l', CONNECTION_OPTIONS = 'Server=s;UID=u;PWD=********;Database=d')"));
    EXPECT_EQ(masked("select 'password = ''x'''"), QStringLiteral("select 'password = ''********'''"));
}

TEST(SQLSecrets, AreMaskedInTextsAboutTheSql)
{
    QStringList secrets;
    KNSQLWithoutSecrets(QStringLiteral("EXEC('ALTER LOGIN a WITH PASSWORD = ''it''''s''') SET @pwd = 0xAB"),
                        &secrets);
    EXPECT_EQ(secrets, (QStringList{QStringLiteral("it's"), QStringLiteral("0xAB")}));
    EXPECT_EQ(KNTextWithoutSecrets(QStringLiteral("Incorrect syntax near 'it's'."), secrets),
              QStringLiteral("Incorrect syntax near '********'."));
}

TEST(SQLSecrets, LeaveEverythingElseAsItIs)
{
    for (const char *sql : {"-- password = 'x'", "select Password, 'x' from t", "where Password <> 'x'", "",
                            "select 1", "select 'Enter your password'",
                            "exec('select * from u where password = @p')", "select 'open', 'x'"})
        EXPECT_EQ(masked(sql), QString::fromUtf8(sql));
}
