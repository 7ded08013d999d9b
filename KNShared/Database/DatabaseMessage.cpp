#include "Database/DatabaseMessage.h"

#include "Foundation/KNFormat.h"

bool DatabaseMessage::isError() const
{
    return type == ClientError || (type == ServerMessage && severity >= 16);
}

bool DatabaseMessage::isValueWarning() const
{
    return type == ClientError && severity <= ValueSeverity;
}

bool DatabaseMessage::isFailure() const
{
    constexpr qint32 Information = 10;
    return type == ClientError ? !isValueWarning() : severity > Information;
}

QString DatabaseMessage::failureText() const
{
    return KNFormat("Msg %d, Level %d, State %d.\r\n%@", msgno, severity, msgstate, msgtext);
}

QString DatabaseMessage::description() const
{
    const QString location =
        procname.isEmpty() ? KNFormat("Line %lu", line) : KNFormat("Procedure %@, Line %lu", procname, line);
    return KNFormat("Msg %d, Level %d, State %d, %@\r\n%@", msgno, severity, msgstate, location, msgtext);
}
