#pragma once

#include "UI/Import/KNImportSession.h"

#include <QWidget>

/// A page of the import wizard. On the UI thread.
class KNSHAREDUI_EXPORT KNImportPage : public QWidget
{
    Q_OBJECT

public:
    /// The session outlives the page.
    explicit KNImportPage(KNImportSession &session, QWidget *parent = nullptr);

    virtual QString title() const = 0;
    /// Called when the page is shown after the one before it.
    virtual void enter() {}
    /// Whether the wizard may go on from here.
    virtual bool isComplete() const { return true; }
    /// Puts the choices into the session's plan, before the wizard goes on.
    virtual void apply() {}

Q_SIGNALS:
    /// The result of isComplete() may have changed.
    void completeChanged();

protected:
    KNImportSession &session() const { return m_session; }

private:
    KNImportSession &m_session;
};
