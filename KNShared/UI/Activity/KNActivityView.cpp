#include "UI/Activity/KNActivityView.h"

#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"

#include <QHash>
#include <QHeaderView>
#include <QSet>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int SessionRole = Qt::UserRole; ///< the session's number
constexpr int WidestColumn = 240;

int sessionOf(const QTreeWidgetItem *item)
{
    return item ? item->data(KNActivityView::Session, SessionRole).toInt() : 0;
}

} // namespace

KNActivityView::KNActivityView(QWidget *parent)
    : QTreeWidget(parent)
{
    setAccessibleName(tr("Sessions"));
    setHeaderLabels({tr("Session"), tr("Status"), tr("For"), tr("Database"), tr("Login"), tr("Host"),
                     tr("Program"), tr("Transactions"), tr("Waits For")});
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionMode(SingleSelection);
    connect(this, &QTreeWidget::currentItemChanged, this, &KNActivityView::currentSessionChanged);
}

bool KNActivityView::isRunning(const KNActivitySession &session)
{
    return !session.command.isEmpty();
}

QString KNActivityView::durationText(qint64 milliseconds)
{
    if (milliseconds < 1000)
        return KNFormat(tr("%lld ms"), std::max<qint64>(milliseconds, 0));
    const qint64 seconds = milliseconds / 1000;
    if (seconds < 60)
        return KNFormat(tr("%lld.%lld s"), seconds, milliseconds % 1000 / 100);
    const auto twoDigits = [](qint64 number) {
        return QString::number(number).rightJustified(2, QLatin1Char('0'));
    };
    return KNFormat("%lld:%@:%@", seconds / 3600, twoDigits(seconds / 60 % 60), twoDigits(seconds % 60));
}

QTreeWidgetItem *KNActivityView::itemOf(const KNActivitySession &session) const
{
    auto *const item = new QTreeWidgetItem;
    item->setData(Session, SessionRole, session.id);
    const QString number = QString::number(session.id);
    item->setText(Session, session.isOwn ? KNFormat(tr("%@ (this one)"), number) : number);
    const bool isBlocked = session.blockedBy != 0 && session.blockedBy != session.id;
    item->setText(Status, !isBlocked              ? session.status
                          : session.blockedBy > 0 ? KNFormat(tr("blocked by %d"), session.blockedBy)
                                                  : tr("blocked by the server"));
    item->setText(Duration, durationText(session.milliseconds));
    item->setTextAlignment(Duration, Qt::AlignRight | Qt::AlignVCenter);
    item->setText(Database, session.database);
    item->setText(Login, session.login);
    item->setText(Host, session.host);
    item->setText(Program, session.program);
    item->setText(Wait, session.waitType);
    if (session.openTransactions > 0)
        item->setText(Transactions, QString::number(session.openTransactions));
    item->setTextAlignment(Transactions, Qt::AlignRight | Qt::AlignVCenter);
    for (int column = 0; column < ColumnCount; ++column)
        item->setToolTip(column, KNPlainToolTip(item->text(column)));
    return item;
}

/// Idle sessions that hold nobody up are of little interest.
void KNActivityView::showIdle(QTreeWidgetItem *item) const
{
    for (int column = 0; column < ColumnCount; ++column)
        item->setForeground(column, palette().brush(QPalette::PlaceholderText));
}

void KNActivityView::setSessions(const QList<KNActivitySession> &sessions)
{
    const int current = sessionOf(currentItem());
    QSet<int> collapsed;
    for (QTreeWidgetItemIterator each(this); *each; ++each) {
        if ((*each)->childCount() > 0 && !(*each)->isExpanded())
            collapsed.insert(sessionOf(*each));
    }
    const QSignalBlocker block(this);
    m_sessions = sessions;
    clear();
    const QList<qsizetype> blockers = KNServerActivity::blockers(sessions);
    QList<QTreeWidgetItem *> items;
    for (const KNActivitySession &session : sessions)
        items.append(itemOf(session));
    QList<QTreeWidgetItem *> roots;
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (blockers[i] < 0)
            roots.append(items[i]);
        else
            items[blockers[i]]->addChild(items[i]);
    }
    addTopLevelItems(roots);
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (items[i]->childCount() == 0 && blockers[i] < 0 && !isRunning(sessions[i]))
            showIdle(items[i]);
    }
    for (QTreeWidgetItem *const item : items) {
        item->setExpanded(!collapsed.contains(sessionOf(item)));
        if (sessionOf(item) == current)
            setCurrentItem(item);
    }
    if (std::exchange(m_wereColumnsFitted, true))
        return;
    for (int column = 0; column < ColumnCount; ++column) {
        resizeColumnToContents(column);
        setColumnWidth(column, std::min(columnWidth(column) + 12, WidestColumn));
    }
}

std::optional<KNActivitySession> KNActivityView::currentSession() const
{
    const int id = sessionOf(currentItem());
    const auto found = std::find_if(m_sessions.begin(), m_sessions.end(),
                                    [id](const KNActivitySession &session) { return session.id == id; });
    return currentItem() && found != m_sessions.end() ? std::optional(*found) : std::nullopt;
}

QString KNActivityView::summary() const
{
    const auto running = std::count_if(m_sessions.begin(), m_sessions.end(), isRunning);
    const auto blocked = std::count_if(m_sessions.begin(), m_sessions.end(), [](const auto &session) {
        return session.blockedBy != 0 && session.blockedBy != session.id;
    });
    return KNFormat(m_sessions.size() == 1 ? tr("%ld session, %ld running, %ld blocked")
                                           : tr("%ld sessions, %ld running, %ld blocked"),
                    m_sessions.size(), running, blocked);
}
