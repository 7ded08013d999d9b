#include "Desktop/Main/DocumentTabs.h"

#include "Desktop/Main/DocumentTabMenu.h"
#include "Desktop/Main/TabCycle.h"
#include "Desktop/Main/TabDrag.h"
#include "Desktop/Main/TabTitles.h"
#include "Desktop/Query/QueryTab.h"
#include "Foundation/KNFormat.h"
#include "UI/Icons/KNIcon.h"
#include "UI/KNPlainToolTip.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QTabBar>

namespace {

/// The icon of a document's tab: what it does, or how its last run ended.
QIcon iconOf(const KNDocumentTab &document)
{
    const KNDocumentStatus status = document.status();
    if (status.isRunning)
        return KNIcon::named(QStringLiteral("tab-running"));
    switch (status.outcome) {
    case KNDocumentStatus::Outcome::Succeeded:
        return KNIcon::named(QStringLiteral("tab-succeeded"));
    case KNDocumentStatus::Outcome::Failed:
        return KNIcon::named(QStringLiteral("tab-failed"));
    case KNDocumentStatus::Outcome::None:
        break;
    }
    return document.icon();
}

/// Describes the icon for screen readers; empty without an icon.
QString stateText(const KNDocumentStatus &status)
{
    if (status.isRunning)
        return DocumentTabs::tr("A query is running.");
    switch (status.outcome) {
    case KNDocumentStatus::Outcome::Succeeded:
        return DocumentTabs::tr("The last run succeeded.");
    case KNDocumentStatus::Outcome::Failed:
        return DocumentTabs::tr("The last run had errors.");
    case KNDocumentStatus::Outcome::None:
        break;
    }
    return {};
}

} // namespace

DocumentTabs::DocumentTabs(QWidget *parent)
    : QTabWidget(parent)
    , m_cycle(new TabCycle(this))
    , m_hint(new QLabel(tr("Open a new query, or double-click a table to see its rows."), this))
{
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setWordWrap(true);
    m_hint->setForegroundRole(QPalette::PlaceholderText);
    setDocumentMode(true);
    setTabsClosable(true);
    setMovable(true);
    tabBar()->setExpanding(false);
    setAccessibleName(tr("Query tabs"));
    connect(this, &QTabWidget::currentChanged, this, &DocumentTabs::currentStatusChanged);
    connect(this, &QTabWidget::tabCloseRequested, this,
            [this](int index) { closeDocument(documents().value(index)); });
    connect(tabBar(), &QTabBar::tabMoved, this, &DocumentTabs::documentsChanged);
    connect(this, &DocumentTabs::documentsChanged, this, &DocumentTabs::updateTitles);
    tabBar()->installEventFilter(this);
    new TabDrag(this);
    setAcceptDrops(true);
    tabBar()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(tabBar(), &QTabBar::customContextMenuRequested, this, &DocumentTabs::showMenu);
}

void DocumentTabs::resizeEvent(QResizeEvent *event)
{
    QTabWidget::resizeEvent(event);
    m_hint->setGeometry(rect());
}

void DocumentTabs::tabInserted(int index)
{
    QTabWidget::tabInserted(index);
    m_hint->hide();
}

void DocumentTabs::tabRemoved(int index)
{
    QTabWidget::tabRemoved(index);
    m_hint->setVisible(count() == 0);
    m_hint->raise();
}

QList<KNDocumentTab *> DocumentTabs::documents() const
{
    QList<KNDocumentTab *> documents;
    for (int i = 0; i < count(); ++i)
        documents.append(qobject_cast<KNDocumentTab *>(widget(i)));
    return documents;
}

KNDocumentTab *DocumentTabs::currentDocument() const
{
    return qobject_cast<KNDocumentTab *>(currentWidget());
}

void DocumentTabs::insertDocument(int index, KNDocumentTab *document)
{
    insertTab(index, document, QString());
    connect(document, &KNDocumentTab::titleChanged, this, [this] { updateTitles(); });
    connect(document, &KNDocumentTab::statusChanged, this, [this, document] {
        updateState(document);
        if (document == currentDocument())
            Q_EMIT currentStatusChanged();
    });
    updateState(document);
    Q_EMIT documentsChanged();
}

void DocumentTabs::removeDocument(KNDocumentTab *document)
{
    takeDocument(document);
    document->deleteLater();
}

void DocumentTabs::takeDocument(KNDocumentTab *document)
{
    removeTab(indexOf(document));
    document->disconnect(this);
    Q_EMIT documentsChanged();
}

bool DocumentTabs::canMove(const KNDocumentTab &document) const
{
    return qobject_cast<const QueryTab *>(&document) != nullptr;
}

void DocumentTabs::closeDocument(KNDocumentTab *document)
{
    closeThen(document, [] {});
}

void DocumentTabs::closeThen(KNDocumentTab *document, const std::function<void()> &proceed)
{
    document->prepareToClose([self = QPointer(this), document = QPointer(document), proceed] {
        if (!self || !document || self->indexOf(document) < 0)
            return;
        const auto state = document->isUnused() ? std::nullopt : document->savedState();
        if (state)
            self->m_closed.append(*state);
        if (self->m_closed.size() > MostClosed)
            self->m_closed.removeFirst();
        self->removeDocument(document);
        proceed();
    });
}

void DocumentTabs::closeDocuments(const QList<KNDocumentTab *> &toClose)
{
    QList<QPointer<KNDocumentTab>> left;
    for (KNDocumentTab *const document : toClose)
        left.append(document);
    closeNext(left);
}

void DocumentTabs::closeNext(const QList<QPointer<KNDocumentTab>> &toClose)
{
    if (toClose.isEmpty())
        return;
    const auto next = [self = QPointer(this), rest = toClose.mid(1)] {
        if (self)
            self->closeNext(rest);
    };
    if (toClose.first())
        closeThen(toClose.first(), next);
    else
        next();
}

std::optional<KNDocumentState> DocumentTabs::takeClosedDocument()
{
    return m_closed.isEmpty() ? std::nullopt : std::optional(m_closed.takeLast());
}

void DocumentTabs::prepareToEndSession(std::function<void()> proceed)
{
    QList<QPointer<KNDocumentTab>> toAsk;
    for (KNDocumentTab *const document : documents())
        toAsk.append(document);
    askNext(toAsk, proceed);
}

void DocumentTabs::askNext(const QList<QPointer<KNDocumentTab>> &toAsk, const std::function<void()> &proceed)
{
    if (toAsk.isEmpty()) {
        proceed();
        return;
    }
    const auto next = [self = QPointer(this), rest = toAsk.mid(1), proceed] {
        if (self)
            self->askNext(rest, proceed);
    };
    if (KNDocumentTab *const document = toAsk.first())
        document->prepareToEndSession(next);
    else
        next();
}

void DocumentTabs::showAdjacent(int offset)
{
    if (count() > 0)
        setCurrentIndex((currentIndex() + offset + count()) % count());
}

void DocumentTabs::showRecent(int offset)
{
    m_cycle->step(offset);
}

void DocumentTabs::updateTitles()
{
    const QList<KNDocumentTab *> all = documents();
    const QStringList titles = distinctTitles(all);
    for (qsizetype i = 0; i < all.size(); ++i)
        updateTab(all[i], titles[i]);
}

void DocumentTabs::updateTab(KNDocumentTab *document, const QString &title)
{
    const int index = indexOf(document);
    setTabText(index, document->isModified() ? KNFormat("%@ •", title) : title);
    updateState(document);
}

/// Called several times a second while a query runs.
void DocumentTabs::updateState(KNDocumentTab *document)
{
    const int index = indexOf(document);
    if (index < 0)
        return;
    const QString path = document->filePath();
    const QString state = stateText(document->status());
    const QString name = path.isNull() ? document->title() : path;
    const QString toolTip = KNPlainToolTip(state.isEmpty() ? name : name + QLatin1Char('\n') + state);
    if (tabToolTip(index) == toolTip && state.isEmpty() == tabIcon(index).isNull())
        return;
    setTabToolTip(index, toolTip);
    setTabIcon(index, iconOf(*document));
}

bool DocumentTabs::eventFilter(QObject *watched, QEvent *event)
{
    const auto *const mouse = static_cast<const QMouseEvent *>(event);
    if (watched == tabBar() && event->type() == QEvent::MouseButtonRelease &&
        mouse->button() == Qt::MiddleButton) {
        if (KNDocumentTab *const document = documents().value(tabBar()->tabAt(mouse->position().toPoint())))
            closeDocument(document);
        return true;
    }
    return QTabWidget::eventFilter(watched, event);
}

void DocumentTabs::showMenu(const QPoint &position)
{
    KNDocumentTab *const document = documents().value(tabBar()->tabAt(position));
    if (!document)
        return;
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    fillDocumentTabMenu(*menu, *this, *document);
    menu->popup(tabBar()->mapToGlobal(position));
}

void DocumentTabs::dragEnterEvent(QDragEnterEvent *event)
{
    KNDocumentTab *const document = TabDrag::documentIn(*event->mimeData());
    if (document && indexOf(document) < 0)
        event->acceptProposedAction();
}

void DocumentTabs::dropEvent(QDropEvent *event)
{
    KNDocumentTab *const document = TabDrag::documentIn(*event->mimeData());
    if (!document || indexOf(document) >= 0)
        return;
    event->acceptProposedAction();
    const QPoint position = tabBar()->mapFrom(this, event->position().toPoint());
    Q_EMIT documentDropped(document, tabBar()->tabAt(position));
}
