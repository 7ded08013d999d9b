#include "UI/RowEditing/KNDateField.h"

#include "UI/Icons/KNIcon.h"

#include <QAction>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QStyle>

namespace {

const QString DateFormat = QStringLiteral("yyyy-MM-dd");

} // namespace

KNDateField::KNDateField(QWidget *parent)
    : QLineEdit(parent)
{
    QAction *const open = addAction(KNIcon::named(QStringLiteral("calendar")), TrailingPosition);
    open->setText(tr("Choose a date (Alt+Down)"));
    open->setToolTip(open->text());
    connect(open, &QAction::triggered, this, &KNDateField::openCalendar);
}

QDate KNDateField::date() const
{
    return QDate::fromString(text().left(DateFormat.size()), DateFormat);
}

void KNDateField::setDate(const QDate &date)
{
    const QString rest = this->date().isValid() ? text().mid(DateFormat.size()) : QString();
    setText(date.toString(DateFormat) + rest);
    setModified(true);
}

int KNDateField::widthFor(const QString &text) const
{
    return fontMetrics().horizontalAdvance(text) + 3 * style()->pixelMetric(QStyle::PM_SmallIconSize);
}

QCalendarWidget *KNDateField::openCalendar()
{
    auto *const calendar = new QCalendarWidget(this);
    calendar->setWindowFlags(Qt::Popup);
    calendar->setAttribute(Qt::WA_DeleteOnClose);
    calendar->setAccessibleName(tr("Calendar"));
    calendar->setDateRange(QDate(1, 1, 1), QDate(9999, 12, 31));
    calendar->setSelectedDate(date().isValid() ? date() : QDate::currentDate());
    const auto choose = [this, calendar](const QDate &chosen) {
        setDate(chosen);
        calendar->close();
        setFocus();
    };
    connect(calendar, &QCalendarWidget::clicked, this, choose);
    connect(calendar, &QCalendarWidget::activated, this, choose);
    calendar->move(mapToGlobal(QPoint(0, height())));
    calendar->show();
    calendar->setFocus();
    return calendar;
}

void KNDateField::keyPressEvent(QKeyEvent *event)
{
    if (event->keyCombination() == (Qt::ALT | Qt::Key_Down))
        openCalendar();
    else
        QLineEdit::keyPressEvent(event);
}
