#pragma once

#include "UI/KNSharedUIExport.h"

#include <QFrame>

class QLabel;
class QPushButton;

/// A line in a dialog with a warning about the content below it and an optional button. Hidden while it has
/// no text. On the UI thread.
class KNSHAREDUI_EXPORT KNCautionBar : public QFrame
{
    Q_OBJECT

public:
    explicit KNCautionBar(QWidget *parent = nullptr);

    /// Plain text; null hides the line.
    void setText(const QString &text);
    QString text() const;
    /// The button's title; null for none.
    void setButtonTitle(const QString &title);
    QPushButton *button() const { return m_button; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyColours();

    QLabel *const m_icon;
    QLabel *const m_text;
    QPushButton *const m_button;
};
