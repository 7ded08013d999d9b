#pragma once

#include "UI/Workspace/KNDocumentTab.h"

/// A document that no program knows: what a new feature would add.
class DummyDocument : public KNDocumentTab
{
public:
    explicit DummyDocument(std::shared_ptr<const VantorDBC> details)
        : m_details(std::move(details))
    {
        setFocusPolicy(Qt::StrongFocus);
        setAccessibleName(QStringLiteral("Dummy"));
    }

    QString title() const override { return titleText; }
    std::shared_ptr<const VantorDBC> databaseConnectionDetails() const override { return m_details; }
    KNDocumentStatus status() const override { return shownStatus; }
    bool isModified() const override { return modified; }
    void prepareToClose(std::function<void()> proceed) override { closing = std::move(proceed); }
    std::optional<KNDocumentState> savedState() const override { return state; }
    bool canPerform(KNDocumentAction action) const override { return possible.contains(action); }
    void perform(KNDocumentAction action) override { performed.append(action); }

    QString titleText = QStringLiteral("Dummy");
    KNDocumentStatus shownStatus;
    bool modified = false;
    std::function<void()> closing; ///< what the window waits for before it closes the document
    std::optional<KNDocumentState> state;
    QList<KNDocumentAction> possible;
    QList<KNDocumentAction> performed;

private:
    const std::shared_ptr<const VantorDBC> m_details;
};
