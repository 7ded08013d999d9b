#include "Desktop/Main/DocumentTabs.h"

#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"

#include <QTabBar>

DocumentTabs::DocumentTabs(QWidget *parent)
    : QTabWidget(parent)
{
    setDocumentMode(true);
    setTabsClosable(true);
    setMovable(true);
    tabBar()->setExpanding(false);
    setAccessibleName(tr("Query tabs"));
    connect(this, &QTabWidget::currentChanged, this, &DocumentTabs::currentStatusChanged);
    connect(this, &QTabWidget::tabCloseRequested, this,
            [this](int index) { closeDocument(documents().value(index)); });
    connect(tabBar(), &QTabBar::tabMoved, this, &DocumentTabs::documentsChanged);
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
    connect(document, &KNDocumentTab::titleChanged, this, [this, document] { updateTab(document); });
    connect(document, &KNDocumentTab::statusChanged, this, [this, document] {
        if (document == currentDocument())
            Q_EMIT currentStatusChanged();
    });
    updateTab(document);
    Q_EMIT documentsChanged();
}

void DocumentTabs::removeDocument(KNDocumentTab *document)
{
    removeTab(indexOf(document));
    document->disconnect(this);
    document->deleteLater();
    Q_EMIT documentsChanged();
}

void DocumentTabs::closeDocument(KNDocumentTab *document)
{
    document->prepareToClose([self = QPointer(this), document = QPointer(document)] {
        if (self && document && self->indexOf(document) >= 0)
            self->removeDocument(document);
    });
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

void DocumentTabs::updateTab(KNDocumentTab *document)
{
    const int index = indexOf(document);
    if (index < 0)
        return;
    const QString title = document->title();
    const QString path = document->filePath();
    setTabText(index, document->isModified() ? KNFormat("%@ •", title) : title);
    setTabToolTip(index, KNPlainToolTip(path.isNull() ? title : path));
    setTabIcon(index, document->icon());
}
