#include "Implementations/MSSQLTraceFile.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <thread>

TEST(TraceFile, DetectsBeginningOfRecord)
{
    EXPECT_TRUE(MSSQLTraceFile::beginsRecord("dblib.c:764:dbsetlname(0x55, secret, 3)\n"));
    EXPECT_TRUE(MSSQLTraceFile::beginsRecord("12:34:56.123456 4711 (packet.c:639):Received packet\n"));
    EXPECT_FALSE(MSSQLTraceFile::beginsRecord("0000 04 01 00 2b-00 00 01 00 |...+....|\n"));
    EXPECT_FALSE(MSSQLTraceFile::beginsRecord("second line of a password, 3)\n"));
}

TEST(TraceFile, LeavesLoginSettingsOutWithAllTheirLines)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("deep/er/trace.log"));
    const QString filtered = MSSQLTraceFile::openFiltered(path);
    ASSERT_FALSE(filtered.isNull());
    QFile trace(filtered);
    ASSERT_TRUE(trace.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    trace.write("dblib.c:100:before\n"
                "dblib.c:764:dbsetlname(0x55, pass\n"
                "word of two lines, 3)\n"
                "dblib.c:900:behind\n"
                "0000 04 01\n");
    QFile result(path);
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    QByteArray text;
    for (int i = 0; i < 10'000 && !text.endsWith("04 01\n"); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        text += result.readAll();
    }
    EXPECT_EQ(text, QByteArray("dblib.c:100:before\ndblib.c:900:behind\n0000 04 01\n"));
}

TEST(TraceFile, ThatCannotBeMadeIsNone)
{
    EXPECT_TRUE(MSSQLTraceFile::openFiltered(QStringLiteral("/proc/nowhere/trace.log")).isNull());
}
