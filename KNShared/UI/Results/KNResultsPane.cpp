#include "UI/Results/KNResultsPane.h"

KNResultsPane::KNResultsPane(QWidget *parent)
    : QWidget(parent)
{
}

void KNResultsPane::beginRun(const std::shared_ptr<KNResultSetHolder> &, const VantorDBC &) {}

void KNResultsPane::finishRun() {}

void KNResultsPane::clear() {}

qint64 KNResultsPane::rowCount() const
{
    return 0;
}
