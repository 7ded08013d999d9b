#include "Scripts/MSSQLScriptQueryLoader.h"

#include "Foundation/KNAssert.h"
#include "Foundation/KNDispatch.h"

void MSSQLScriptQueryLoader::beginLoadingQuery(const VantorDBC &details)
{
    const auto self = std::static_pointer_cast<MSSQLScriptQueryLoader>(shared_from_this());
    KNDispatch::globalQueue([self, copy = details.copy()] {
        QString text;
        KNQueryReport report;
        try {
            text = self->script(*copy, &report);
        } catch (const KNAssertionFailure &failure) {
            // Already logged. The delegate receives no text.
            report.failure = KNError(QStringLiteral("mssql.queryLoader"), 0, failure.message());
        }
        self->deliver(text, std::move(report));
    });
}

void MSSQLScriptQueryLoader::guardDrop(qsizetype drop, KNQueryReport *report)
{
    if (report->failure)
        report->unsafeLength += drop;
}
