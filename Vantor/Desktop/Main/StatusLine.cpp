#include "Desktop/Main/StatusLine.h"

#include "Database/KNMessageText.h"
#include "Desktop/Main/EncryptionMark.h"
#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace {

constexpr int FewestCharacters = 8; // of a name that can be long

/// A label whose text is shortened where it does not fit. It can become as narrow as these characters; 0: its
/// whole text is always shown.
class StatusLabel : public QLabel
{
public:
    StatusLabel(int fewestCharacters, QWidget *parent)
        : QLabel(parent)
        , m_fewestCharacters(fewestCharacters)
    {
    }
    QSize minimumSizeHint() const override
    {
        QSize size = QLabel::minimumSizeHint();
        const QMargins margins = contentsMargins();
        const int narrowest =
            fontMetrics().averageCharWidth() * m_fewestCharacters + margins.left() + margins.right();
        if (m_fewestCharacters > 0)
            size.setWidth(std::min(size.width(), narrowest));
        return size;
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
        style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(),
                              shown, foregroundRole());
    }

private:
    const int m_fewestCharacters;
};

/// Reads out a label's name with its text: "Rows: 12 rows".
class LabelAccessible : public QAccessibleWidget
{
public:
    explicit LabelAccessible(QLabel *label)
        : QAccessibleWidget(label, QAccessible::StaticText)
    {
    }
    QString text(QAccessible::Text kind) const override
    {
        const QString text = static_cast<const QLabel *>(widget())->text();
        if (kind == QAccessible::Value)
            return text;
        if (kind != QAccessible::Name || text.isEmpty())
            return QAccessibleWidget::text(kind);
        return KNFormat("%@: %@", widget()->accessibleName(), text);
    }
};

QAccessibleInterface *labelInterface(const QString &, QObject *object)
{
    auto *const label = qobject_cast<QLabel *>(object);
    return label && qobject_cast<StatusLine *>(label->parent()) ? new LabelAccessible(label) : nullptr;
}

} // namespace

StatusLine::StatusLine(QWidget *parent)
    : QStatusBar(parent)
    , m_selection(newLabel(tr("Selection")))
    , m_text(addLabel(tr("Activity"), FewestCharacters))
    , m_server(addLabel(tr("Server"), FewestCharacters))
    , m_encryption(new EncryptionMark)
    , m_login(addLabel(tr("Login"), FewestCharacters))
    , m_database(addLabel(tr("Database"), FewestCharacters))
    , m_transaction(addLabel(tr("Transaction")))
    , m_position(addLabel(tr("Position")))
    , m_encoding(addLabel(tr("Encoding")))
    , m_lineEnds(addLabel(tr("Line ends")))
    , m_rows(addLabel(tr("Rows")))
    , m_time(addLabel(tr("Time")))
{
    QAccessible::installFactory(labelInterface);
    // A long text must not widen the window; messages are shown instead of it.
    m_selection->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    addWidget(m_selection, 1);
    setSizeGripEnabled(false);
    insertPermanentWidget(2, m_encryption);
    clearStatus();
}

QLabel *StatusLine::addLabel(const QString &accessibleName, int fewestCharacters)
{
    QLabel *const label = newLabel(accessibleName, fewestCharacters);
    addPermanentWidget(label);
    return label;
}

QLabel *StatusLine::newLabel(const QString &accessibleName, int fewestCharacters)
{
    auto *const label = new StatusLabel(fewestCharacters, this);
    label->setAccessibleName(accessibleName);
    label->setTextFormat(Qt::PlainText);
    label->setContentsMargins(6, 0, 6, 0);
    return label;
}

void StatusLine::setServer(const QString &server, const QString &version)
{
    // A version text has many lines; the first one names the product.
    const QString product =
        version.section(QLatin1Char('\n'), 0, 0).section(QStringLiteral(" ("), 0, 0).simplified();
    m_server->setText(product.isEmpty() ? server : KNFormat("%@ · %@", server, product));
    m_server->setToolTip(KNPlainToolTip(version.isEmpty() ? server : server + QLatin1Char('\n') + version));
}

void StatusLine::setLogin(const QString &login)
{
    m_login->setText(login);
    m_login->setToolTip(KNPlainToolTip(login));
}

void StatusLine::showStatus(const KNDocumentStatus &status)
{
    m_database->setText(status.database);
    m_database->setToolTip(KNPlainToolTip(status.database));
    m_transaction->setText(status.hasOpenTransaction ? tr("Transaction open") : QString());
    setHasTransaction(status.hasOpenTransaction);
    m_position->setText(status.line > 0
                            ? KNFormat(tr("Line %@, Column %@"), KNMessageText::countText(status.line),
                                       KNMessageText::countText(status.column))
                            : QString());
    m_encoding->setText(status.encoding);
    m_lineEnds->setText(status.lineEnds);
    m_text->setText(status.text);
    m_selection->setText(status.selection);
    m_selection->setToolTip(KNPlainToolTip(status.selection));
    m_rows->setText(status.rowCount ? rowsText(*status.rowCount) : QString());
    m_time->setText(status.elapsedMilliseconds ? durationText(*status.elapsedMilliseconds) : QString());
}

void StatusLine::clearStatus()
{
    m_selection->setToolTip({});
    m_database->setToolTip({});
    for (QLabel *const label :
         {m_selection, m_text, m_database, m_transaction, m_position, m_encoding, m_lineEnds, m_rows, m_time})
        label->clear();
    setHasTransaction(false);
}

void StatusLine::setHasTransaction(bool hasTransaction)
{
    if (hasTransaction == m_hasTransaction)
        return;
    m_hasTransaction = hasTransaction;
    setAutoFillBackground(hasTransaction);
    QPalette colours;
    if (hasTransaction) {
        const bool isDark = QApplication::palette().color(QPalette::Window).lightness() < 128;
        colours.setColor(QPalette::Window, isDark ? QColor(0x5c4510) : QColor(0xffe2a0));
        colours.setColor(QPalette::WindowText, isDark ? QColor(0xffe9bd) : QColor(0x3d2c00));
    }
    setPalette(colours);
}

/// Colours an open transaction anew when the theme changes.
void StatusLine::changeEvent(QEvent *event)
{
    QStatusBar::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange && std::exchange(m_hasTransaction, false))
        setHasTransaction(true);
}

QString StatusLine::rowsText(qint64 count)
{
    return count == 1 ? tr("1 row") : KNFormat(tr("%@ rows"), KNMessageText::countText(count));
}

QString StatusLine::durationText(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / 1000;
    const QString rest = KNFormat("%02ld.%@", seconds % 60,
                                  QString::number(milliseconds % 1000).rightJustified(3, QLatin1Char('0')));
    const qint64 hours = seconds / 3600;
    return hours > 0 ? KNFormat("%ld:%02ld:%@", hours, seconds / 60 % 60, rest)
                     : KNFormat("%ld:%@", seconds / 60, rest);
}
