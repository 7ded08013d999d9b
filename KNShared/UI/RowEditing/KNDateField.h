#pragma once

#include "UI/KNSharedUIExport.h"

#include <QDate>
#include <QLineEdit>

class QCalendarWidget;

/// A text that begins with a date such as 2024-02-29. A calendar, opened with a button or Alt+Down, replaces
/// the date and keeps the rest: time of day, all of its digits, offset. On the UI thread.
class KNSHAREDUI_EXPORT KNDateField : public QLineEdit
{
    Q_OBJECT

public:
    explicit KNDateField(QWidget *parent = nullptr);

    /// The date at the beginning of the text; an invalid one if there is none.
    QDate date() const;
    /// Replaces the date. A text that does not begin with one is replaced as a whole.
    void setDate(const QDate &date);
    /// The width that shows this text and the button.
    int widthFor(const QString &text) const;

public Q_SLOTS:
    /// Opens the calendar as a popup, which deletes itself.
    QCalendarWidget *openCalendar();

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
