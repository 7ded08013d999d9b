#include "UI/ResultEditing/KNRowEditBar.h"

#include "Foundation/KNFormat.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/Results/KNCountText.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

KNRowEditBar::KNRowEditBar(KNResultEditing &editing, QWidget *parent)
    : QFrame(parent)
    , m_editing(editing)
    , m_text(new QLabel(this))
    , m_apply(new QPushButton(this))
    , m_discard(new QPushButton(tr("&Discard Changes"), this))
{
    setAccessibleName(tr("Changes that are not applied"));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_apply->setToolTip(tr("Write the changes to the server (Ctrl+Return)"));
    m_discard->setToolTip(tr("Show the values of the server again"));
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);
    layout->addWidget(m_text, 1);
    for (QPushButton *const button : {m_discard, m_apply}) {
        button->setAutoDefault(false);
        layout->addWidget(button);
    }
    connect(m_apply, &QPushButton::clicked, this, &KNRowEditBar::applyRequested);
    connect(m_discard, &QPushButton::clicked, this, &KNRowEditBar::discardRequested);
    connect(&editing, &KNResultEditing::changed, this, &KNRowEditBar::update);
    connect(&editing, &KNResultEditing::rejected, this, &KNRowEditBar::showProblem);
    update();
}

QString KNRowEditBar::text() const
{
    return m_text->text();
}

void KNRowEditBar::update()
{
    const qsizetype count = m_editing.edits().changeCount();
    m_apply->setText(count == 1 ? tr("&Apply 1 Change")
                                : KNFormat(tr("&Apply %@ Changes"), KNCountText(count)));
    m_text->setText(
        count == 1 ? tr("1 row is changed here, but not on the server.")
                   : KNFormat(tr("%@ rows are changed here, but not on the server."), KNCountText(count)));
    for (QPushButton *const button : {m_discard, m_apply}) {
        button->setEnabled(m_editing.isEditable());
        button->setVisible(count > 0);
    }
    setVisible(count > 0);
}

/// Stays until the next change.
void KNRowEditBar::showProblem(const QString &problem)
{
    m_text->setText(problem);
    show();
}
