#include "Implementations/MSSQLTraceFile.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNPrivateFolder.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <stdio.h>
#include <stdio_ext.h>
#include <stdlib.h>
#include <thread>
#include <unistd.h>

namespace MSSQLTraceFile {

namespace {

/// Copies lines until the writing end is closed, which may happen at the program's exit: this function must
/// not use anything that is destroyed then.
void copyWithoutLoginSettings(FILE *from, FILE *to)
{
    char *line = nullptr;
    size_t capacity = 0;
    bool isLeftOut = false;
    // A read that waits must not hold the stream's lock: fflush(nullptr) takes the locks of all streams.
    __fsetlocking(from, FSETLOCKING_BYCALLER);
    for (ssize_t length; (length = getline(&line, &capacity, from)) > 0;) {
        const QByteArray text = QByteArray::fromRawData(line, length);
        if (beginsRecord(text))
            isLeftOut = beginsLoginSetting(text);
        if (isLeftOut)
            continue;
        fwrite(line, 1, static_cast<size_t>(length), to);
        fflush(to);
    }
    free(line);
    fclose(from);
    fclose(to);
}

} // namespace

bool beginsRecord(const QByteArray &line)
{
    // "dblib.c:764:dbsetlname(...", behind a time when db-lib was told to write one: "12:34:56.123456
    // (dblib.c:764):..."
    constexpr qsizetype LongestHead = 60;
    const qsizetype source = line.left(LongestHead).indexOf(".c:");
    if (source <= 0)
        return false;
    qsizetype end = source + 3;
    while (end < line.size() && line[end] >= '0' && line[end] <= '9')
        ++end;
    const bool hasNumber = end > source + 3;
    if (end < line.size() && line[end] == ')')
        ++end;
    return hasNumber && end < line.size() && line[end] == ':';
}

bool beginsLoginSetting(const QByteArray &line)
{
    return line.contains("dbsetlname(");
}

QString openFiltered(const QString &path)
{
    KNMakePrivateFolder(QFileInfo(path).path());
    const int file =
        open(QFile::encodeName(path).constData(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0600);
    int ends[2];
    if (file < 0 || pipe2(ends, O_CLOEXEC) != 0)
        return QString();
    std::thread(copyWithoutLoginSettings, fdopen(ends[0], "r"), fdopen(file, "w")).detach();
    // The writing end stays open: db-lib opens it again by its path.
    return KNFormat("/proc/self/fd/%d", ends[1]);
}

} // namespace MSSQLTraceFile
