#include "Desktop/Query/TransactionBar.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

TransactionBar::TransactionBar(QWidget *parent)
    : QWidget(parent)
{
    auto *const commit = new QPushButton(tr("C&ommit"));
    commit->setToolTip(tr("Make the changes of the open transaction permanent"));
    connect(commit, &QPushButton::clicked, this, &TransactionBar::commitRequested);
    auto *const rollback = new QPushButton(tr("Roll &Back"));
    rollback->setToolTip(tr("Undo the changes of the open transaction"));
    connect(rollback, &QPushButton::clicked, this, &TransactionBar::rollbackRequested);

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(new QLabel(tr("Transaction open")));
    for (QPushButton *const button : {commit, rollback}) {
        button->setAutoDefault(false);
        layout->addWidget(button);
    }
}
