#include "UI/DatabaseTree/KNPropertiesView.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>

namespace {

constexpr int RowPadding = 6;
constexpr int TextMargin = 8;
constexpr int LongestShownValue = 1000; // UTF-16 units; the clipboard gets all

} // namespace

KNPropertiesView::KNPropertiesView(KNObjectPropertiesLoader loader, QWidget *parent)
    : QWidget(parent)
    , m_loader(std::move(loader))
    , m_list(new QTreeWidget)
    , m_notice(new QLabel)
    , m_mark(new KNProgressMark(tr("Reading the properties")))
{
    m_list->setAccessibleName(tr("Properties"));
    m_list->setHeaderLabels({tr("Property"), tr("Value")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->header()->setStretchLastSection(true);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_notice->setWordWrap(true);
    m_notice->hide();

    auto *const refresh = new QPushButton(tr("&Refresh"));
    auto *const copy = new QPushButton(tr("&Copy"));
    for (QPushButton *const button : {refresh, copy})
        button->setAutoDefault(false);
    connect(refresh, &QPushButton::clicked, this, &KNPropertiesView::load);
    connect(copy, &QPushButton::clicked, this, &KNPropertiesView::copy);

    auto *const top = new QHBoxLayout;
    top->addWidget(refresh);
    top->addWidget(copy);
    top->addWidget(m_mark);
    top->addStretch(1);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_notice);
    load();
}

void KNPropertiesView::load()
{
    m_mark->start();
    const QPointer self(this);
    KNDispatch::globalQueue([self, load = ++m_load, loader = m_loader] {
        KNError error;
        const KNObjectProperties properties = loader(&error);
        KNDispatch::mainQueue([self, load, properties, error] {
            if (self && self->m_load == load)
                self->showProperties(properties, error);
        });
    });
}

void KNPropertiesView::showProperties(const KNObjectProperties &properties, const KNError &error)
{
    m_mark->stop();
    m_list->clear();
    for (const KNObjectProperty &property : properties) {
        auto *const item =
            new QTreeWidgetItem(m_list, {property.name, property.value.left(LongestShownValue).simplified()});
        item->setData(1, Qt::UserRole, property.value);
        item->setSizeHint(1, QSize(0, fontMetrics().height() + RowPadding)); // the names keep their width
    }
    m_list->resizeColumnToContents(0);
    if (error)
        m_notice->setText(error.localizedDescription());
    else
        m_notice->setText(tr("The object was not found, or you have no right to see its properties."));
    m_notice->setVisible(properties.isEmpty());
}

QString KNPropertiesView::text() const
{
    QString text;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        const QTreeWidgetItem *const item = m_list->topLevelItem(row);
        text += KNFormat("%@\t%@\n", item->text(0), item->data(1, Qt::UserRole).toString());
    }
    return text;
}

void KNPropertiesView::copy() const
{
    QApplication::clipboard()->setText(text());
}
