#include "QueryLoader/KNStatementPair.h"

#include "QueryLoader/StaticQueryLoader.h"

std::shared_ptr<KNQueryLoader> KNStatementPair::loader(bool prefersCorrected) const
{
    KNQueryReport report;
    if (!prefersCorrected && differs())
        report.pair = *this;
    return std::make_shared<StaticQueryLoader>(preferred(prefersCorrected), report);
}
