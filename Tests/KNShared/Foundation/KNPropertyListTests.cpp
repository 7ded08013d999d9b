#include "Foundation/KNPropertyList.h"

#include "Support/PrintQt.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace KNPropertyListTests {

namespace {

using KNPropertyList::Problem;
using Dictionary = QHash<QString, QString>;

QByteArray plist(const char *value)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n") + value +
           "\n</plist>\n";
}

QStringList listed(const char *value)
{
    KNError error;
    QStringList list = KNPropertyList::stringList(plist(value), &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    return list;
}

Dictionary dictionary(const char *value)
{
    KNError error;
    Dictionary read = KNPropertyList::stringDictionary(plist(value), &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    return read;
}

void expectProblem(const KNError &error, Problem problem)
{
    EXPECT_EQ(error.domain(), QStringLiteral("com.quorvex.vantor.propertyList"));
    EXPECT_EQ(error.code(), static_cast<int>(problem)) << error.localizedDescription().toStdString();
}

void expectBadList(const QByteArray &data, Problem problem)
{
    KNError error;
    EXPECT_TRUE(KNPropertyList::stringList(data, &error).isEmpty()) << data.toStdString();
    expectProblem(error, problem);
}

void expectBadDictionary(const char *value)
{
    KNError error;
    EXPECT_TRUE(KNPropertyList::stringDictionary(plist(value), &error).isEmpty()) << value;
    expectProblem(error, Problem::UnexpectedShape);
}

} // namespace

TEST(KNPropertyList, ReadsAnArrayOfStringsInItsOrder)
{
    EXPECT_EQ(listed("<array><string>SELECT</string>\n\t<!-- note --><string>END-EXEC</string></array>"),
              QStringList({QStringLiteral("SELECT"), QStringLiteral("END-EXEC")}));
    EXPECT_TRUE(listed("<array/>").isEmpty());
}

TEST(KNPropertyList, ReadsADictionaryOfStrings)
{
    const Dictionary read = dictionary("<dict>\n<key>Tables</key>\n<string>SELECT 1</string>"
                                       "<key>Tables_2000</key><string></string></dict>");
    EXPECT_EQ(read.size(), 2);
    EXPECT_EQ(read.value(QStringLiteral("Tables")), QStringLiteral("SELECT 1"));
    EXPECT_EQ(read.value(QStringLiteral("Tables_2000")), QStringLiteral(""));
    EXPECT_FALSE(read.value(QStringLiteral("Tables_2000")).isNull());
    EXPECT_TRUE(dictionary("<dict></dict>").isEmpty());
}

TEST(KNPropertyList, KeepsTheTextOfAStringAsItIs)
{
    EXPECT_EQ(listed("<array><string>  a &lt; b &amp;&#13;\n\tc \xF0\x9F\x98\x80 </string>"
                     "<string><![CDATA[x < y]]></string><string/></array>"),
              QStringList({QStringLiteral("  a < b &\r\n\tc \U0001F600 "), QStringLiteral("x < y"),
                           QStringLiteral("")}));
    EXPECT_FALSE(listed("<array><string/></array>").first().isNull());
}

TEST(KNPropertyList, AcceptsADocumentType)
{
    KNError error;
    const QByteArray data =
        "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://127.0.0.1/none.dtd\">\n"
        "<plist version=\"1.0\"><array><string>a</string></array></plist>";
    EXPECT_EQ(KNPropertyList::stringList(data, &error), QStringList(QStringLiteral("a")));
    EXPECT_FALSE(error);
}

TEST(KNPropertyList, RefusesInvalidXml)
{
    expectBadList("", Problem::Malformed);
    expectBadList("SELECT", Problem::Malformed);
    expectBadList("<plist><array><string>a</string>", Problem::Malformed);
    expectBadList("<plist><array><string>a</array></plist>", Problem::Malformed);
    expectBadList(plist("<array><string>a</string></array>") + "<plist/>", Problem::Malformed);
    expectBadList(plist("<array><string>&unknown;</string></array>"), Problem::Malformed);
}

TEST(KNPropertyList, RefusesOtherShapes)
{
    expectBadList("<html><array/></html>", Problem::UnexpectedShape);
    expectBadList(plist(""), Problem::UnexpectedShape);
    expectBadList(plist("<dict/>"), Problem::UnexpectedShape);
    expectBadList(plist("<string>a</string>"), Problem::UnexpectedShape);
    expectBadList(plist("<array><string>a</string><integer>1</integer></array>"), Problem::UnexpectedShape);
    expectBadList(plist("<array/><array/>"), Problem::UnexpectedShape);
    for (const char *value : {"<array/>", "<dict><string>a</string></dict>", "<dict><key>a</key></dict>",
                              "<dict><key>a</key><key>b</key><string>c</string></dict>",
                              "<dict><key>a</key><integer>1</integer></dict>",
                              "<dict><key>a</key><string>1</string><key>a</key><string>2</string></dict>"})
        expectBadDictionary(value);
}

TEST(KNPropertyList, ReportsFileAndLineOfErrors)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("words.plist")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<plist>\n<array>\n<integer>1</integer>\n</array>\n</plist>\n");
    file.close();
    KNError error;
    KNPropertyList::stringList(file.fileName(), &error);
    expectProblem(error, Problem::UnexpectedShape);
    EXPECT_TRUE(error.localizedDescription().startsWith(file.fileName() + QStringLiteral(", line 3:")))
        << error.localizedDescription().toStdString();
}

TEST(KNPropertyList, ReadsFilesAndReportsMissingOnes)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("queries.plist")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(plist("<dict><key>a</key><string>b</string></dict>"));
    file.close();
    KNError error(QStringLiteral("left over"), 1, QStringLiteral("from before"));
    EXPECT_EQ(KNPropertyList::stringDictionary(file.fileName(), &error),
              Dictionary({{QStringLiteral("a"), QStringLiteral("b")}}));
    EXPECT_FALSE(error);

    KNPropertyList::stringDictionary(folder.filePath(QStringLiteral("none.plist")), &error);
    expectProblem(error, Problem::Unreadable);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("none.plist")));
    KNPropertyList::stringList(folder.path(), &error);
    expectProblem(error, Problem::Unreadable);
}

TEST(KNPropertyList, DoesNotGrowWithoutBoundOnEntitiesThatNameEachOther)
{
    QByteArray data = "<!DOCTYPE plist [<!ENTITY a0 \"xxxxxxxxxx\">";
    for (int level = 1; level < 10; ++level)
        data += "<!ENTITY a" + QByteArray::number(level) + " \"" +
                QByteArray("&a" + QByteArray::number(level - 1) + ";").repeated(10) + "\">";
    data += "]><plist><array><string>&a9;</string></array></plist>";
    expectBadList(data, Problem::Malformed);
}

} // namespace KNPropertyListTests
