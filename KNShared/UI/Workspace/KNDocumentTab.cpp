#include "UI/Workspace/KNDocumentTab.h"

KNDocumentTab::~KNDocumentTab() = default;

QIcon KNDocumentTab::icon() const
{
    return {};
}

QString KNDocumentTab::filePath() const
{
    return {};
}

KNDocumentStatus KNDocumentTab::status() const
{
    return {};
}

bool KNDocumentTab::isModified() const
{
    return false;
}

bool KNDocumentTab::isUnused() const
{
    return false;
}

void KNDocumentTab::prepareToClose(std::function<void()> proceed)
{
    proceed();
}

void KNDocumentTab::prepareToEndSession(std::function<void()> proceed)
{
    prepareToClose(std::move(proceed));
}

std::optional<KNDocumentState> KNDocumentTab::savedState() const
{
    return std::nullopt;
}

bool KNDocumentTab::canPerform(KNDocumentAction) const
{
    return false;
}

void KNDocumentTab::perform(KNDocumentAction) {}

QString KNDocumentTab::textForCopy() const
{
    return {};
}

bool KNDocumentTab::insertText(const QString &)
{
    return false;
}
