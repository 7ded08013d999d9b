#include "CommandLine/OnErrorOption.h"

#include "Foundation/KNFormat.h"

#include <QCommandLineParser>

namespace {

const QString OnErrorName = QStringLiteral("on-error");

} // namespace

QCommandLineOption OnErrorOption::option()
{
    return {OnErrorName,
            QStringLiteral("What a script does after a batch with an error: stop (the default) or continue "
                           "with the next batch."),
            QStringLiteral("stop|continue"), QStringLiteral("stop")};
}

std::optional<KNOnError> OnErrorOption::from(const QCommandLineParser &parser, KNError *error)
{
    const QString text = parser.value(OnErrorName);
    if (text == QLatin1String("stop"))
        return KNOnError::Stop;
    if (text == QLatin1String("continue"))
        return KNOnError::Continue;
    *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0,
                     KNFormat("--on-error is stop or continue, not %@.", text));
    return std::nullopt;
}
