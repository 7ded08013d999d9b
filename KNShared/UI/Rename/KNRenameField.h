#pragma once

#include "UI/KNSharedUIExport.h"

#include <QFrame>

class QLabel;
class QLineEdit;

/// A line near a name in the text, in which its new name is typed. Return accepts, Escape and leaving the
/// field close it. On the UI thread.
class KNSHAREDUI_EXPORT KNRenameField : public QFrame
{
    Q_OBJECT

public:
    explicit KNRenameField(QWidget *parent);

    /// Shows the field below a line of the parent. `places` is the number of places of the name.
    void open(const QString &name, qsizetype places, const QRect &line);
    QLineEdit *field() const { return m_field; }
    /// The text beside the field.
    QString message() const;
    /// Says why the name cannot be used.
    void showProblem(const QString &problem);

Q_SIGNALS:
    void accepted(const QString &name);
    /// Closed by the keyboard.
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void place();

    QLineEdit *const m_field;
    QLabel *const m_message;
    QString m_places;
    QRect m_line;
};
