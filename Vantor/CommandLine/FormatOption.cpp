#include "CommandLine/FormatOption.h"

#include "Export/ResultFormat.h"
#include "Foundation/KNFormat.h"

namespace {

const QString Name = QStringLiteral("format");
const QString Default = QStringLiteral("table");

/// "table, csv or json", with a remark after the default.
QString listOfFormats(const QString &remark)
{
    QStringList names = ResultFormat::namesFor(ResultFormat::Terminal);
    names.replaceInStrings(Default, Default + remark);
    const QString last = names.takeLast();
    return KNFormat("%@ or %@", names.join(QStringLiteral(", ")), last);
}

} // namespace

QCommandLineOption FormatOption::option()
{
    return {Name, listOfFormats(QStringLiteral(" (the default)")) + QLatin1Char('.'), Name, Default};
}

QString FormatOption::from(const QCommandLineParser &parser, KNError *error)
{
    QString name = parser.value(Name);
    if (ResultFormat::namesFor(ResultFormat::Terminal).contains(name))
        return name;
    *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0,
                     KNFormat("\"%@\" is no format. Use %@.", name, listOfFormats({})));
    return QString();
}
