#include "Desktop/Query/QueryTab.h"

QueryTab::QueryTab(const VantorDBC &, QWidget *parent)
    : QWidget(parent)
{
}

QString QueryTab::text() const
{
    return {};
}

void QueryTab::setText(const QString &) {}

void QueryTab::insertText(const QString &) {}

bool QueryTab::openFile(const QString &, KNError *)
{
    return false;
}

QString QueryTab::filePath() const
{
    return {};
}

QString QueryTab::title() const
{
    return {};
}

void QueryTab::setUntitledName(const QString &) {}

bool QueryTab::isModified() const
{
    return false;
}

void QueryTab::save(std::function<void()>) {}

void QueryTab::saveAs(std::function<void()>) {}

bool QueryTab::isRunning() const
{
    return false;
}

QueryTabStatus QueryTab::status() const
{
    return {};
}

void QueryTab::run() {}

void QueryTab::runBatchAtCursor() {}

void QueryTab::cancel() {}

std::shared_ptr<const VantorDBC> QueryTab::databaseConnectionDetails() const
{
    return nullptr;
}

void QueryTab::prepareToClose(std::function<void()> proceed)
{
    proceed();
}

void QueryTab::prepareToEndSession(std::function<void()> proceed)
{
    proceed();
}
