#include "Export/CsvOptions.h"

#include "Foundation/KNUserDefaults.h"

namespace {

const QString Separator = QStringLiteral("CSVSeparator");
const QString QuotesAlways = QStringLiteral("CSVQuotesAlways");
const QString Utf16 = QStringLiteral("CSVUtf16");
const QString ByteOrderMark = QStringLiteral("CSVByteOrderMark");
const QString Header = QStringLiteral("CSVHeader");
const QString NullText = QStringLiteral("CSVNullText");

/// Settings files do not keep a tab.
const QString TabName = QStringLiteral("tab");

} // namespace

CsvOptions CsvOptions::remembered()
{
    const KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    CsvOptions options;
    const QString separator = defaults.stringForKey(Separator);
    if (separator == TabName)
        options.separator = '\t';
    else if (separator == QLatin1String(";") || separator == QLatin1String("|"))
        options.separator = separator.at(0).toLatin1();
    options.quotesAlways = defaults.boolForKey(QuotesAlways);
    options.encoding = defaults.boolForKey(Utf16) ? Encoding::Utf16 : Encoding::Utf8;
    options.hasByteOrderMark = defaults.boolForKey(ByteOrderMark);
    options.hasHeader = defaults.boolForKey(Header, true);
    options.nullText = defaults.stringForKey(NullText);
    return options;
}

void CsvOptions::remember() const
{
    KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    defaults.setObject(Separator, separator == '\t' ? TabName : QString(QLatin1Char(separator)));
    defaults.setObject(QuotesAlways, quotesAlways);
    defaults.setObject(Utf16, encoding == Encoding::Utf16);
    defaults.setObject(ByteOrderMark, hasByteOrderMark);
    defaults.setObject(Header, hasHeader);
    defaults.setObject(NullText, nullText);
}
