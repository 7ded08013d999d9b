#pragma once

#include "UI/KNSharedUIExport.h"

#include <QFrame>

#include <functional>

class QLabel;
class QToolButton;

/// A line with a note about finished work, which needs no answer, and optionally a button. Hidden until there
/// is a note; the user closes it. On the UI thread.
class KNSHAREDUI_EXPORT KNNoticeBar : public QFrame
{
    Q_OBJECT

public:
    explicit KNNoticeBar(QWidget *parent = nullptr);

    /// Shows plain text instead of the previous note.
    void showNotice(const QString &text);
    /// The same with a button that performs an action.
    void showNotice(const QString &text, const QString &buttonTitle, std::function<void()> pressed);
    QString text() const;
    QToolButton *button() const { return m_button; }

private:
    QLabel *m_text;
    QToolButton *m_button;
    std::function<void()> m_pressed;
};
