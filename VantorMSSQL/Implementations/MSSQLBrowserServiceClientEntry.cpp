#include "Implementations/MSSQLBrowserServiceClientEntry.h"

#include "Foundation/KNFormat.h"

QString MSSQLBrowserServiceClientEntry::connectionString() const
{
    return KNFormat("%@,%d\\%@", host, port, instance.isNull() ? QStringLiteral("") : instance);
}
