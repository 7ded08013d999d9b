#pragma once

#include "UI/KNSharedUIExport.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

/// The base of the find bars: a field, buttons for the next and the previous match,
/// and a message. Hidden until opened. Return finds the next match, Shift+Return the previous one; Escape
/// hides the bar and returns the focus to what it searches. Derived bars lay the widgets out. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNSearchBar : public QWidget
{
    Q_OBJECT

public:
    QLineEdit *field() const { return m_field; }
    /// "2 of 5" or "No matches", for example.
    QString message() const;

public Q_SLOTS:
    /// Shows the bar and focuses the field.
    virtual void open();
    virtual void close();
    /// Continues at the beginning after the last match.
    virtual void findNext() = 0;
    virtual void findPrevious() = 0;

protected:
    /// `searched` gets the focus when the bar is closed.
    KNSearchBar(QWidget *searched, const QString &fieldName, QWidget *parent);

    QToolButton *newButton(const QString &text, const QString &hint);
    QToolButton *previousButton() const { return m_previous; }
    QToolButton *nextButton() const { return m_next; }
    QToolButton *closeButton() const { return m_close; }
    QLabel *messageLabel() const { return m_message; }

    void say(const QString &text, bool isProblem = false);
    /// Says which match is the current one, or how many there are if `current` is negative. With `isLimited`
    /// there may be more than `total`.
    void sayCount(qsizetype current, qsizetype total, bool isLimited);

    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    const QPointer<QWidget> m_searched;
    QLineEdit *const m_field;
    QLabel *const m_message;
    QToolButton *const m_previous;
    QToolButton *const m_next;
    QToolButton *const m_close;
};
