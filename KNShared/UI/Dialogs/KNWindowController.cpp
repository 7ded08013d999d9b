#include "UI/Dialogs/KNWindowController.h"

#include <QDialogButtonBox>
#include <QLayout>
#include <QPushButton>

namespace {

/// Qt loses buttons from the chain of the Tab key when their box comes into a window after it was filled.
void orderButtons(const QDialogButtonBox &box)
{
    QWidget *previous = nullptr;
    for (int i = 0; i < box.layout()->count(); ++i) {
        QWidget *const button = box.layout()->itemAt(i)->widget();
        if (!button)
            continue;
        if (previous)
            QWidget::setTabOrder(previous, button);
        previous = button;
    }
}

} // namespace

KNWindowController::KNWindowController(QWidget *parent)
    : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
}

KNWindowController::~KNWindowController() = default;

void KNWindowController::beginSheet(std::function<void(int)> ended)
{
    connect(this, &QDialog::finished, this, [ended = std::move(ended)](int code) {
        if (ended)
            ended(code);
    });
    open();
    for (const QDialogButtonBox *const box : findChildren<QDialogButtonBox *>())
        orderButtons(*box);
}

void KNWindowController::endSheetWithReturnCode(int code)
{
    done(code);
}

void KNWindowController::done(int code)
{
    if (m_closed)
        return;
    m_closed = true;
    QDialog::done(code);
}

QDialogButtonBox *KNWindowController::makeButtons(const QString &acceptTitle)
{
    auto *const buttons = new QDialogButtonBox(this);
    buttons->addButton(QDialogButtonBox::Cancel)->setAutoDefault(false);
    buttons->addButton(acceptTitle, QDialogButtonBox::AcceptRole)->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { endSheetWithReturnCode(1); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { endSheetWithReturnCode(0); });
    return buttons;
}

QPushButton *KNWindowController::acceptButton(const QDialogButtonBox &buttons)
{
    for (QAbstractButton *const button : buttons.buttons()) {
        if (buttons.buttonRole(button) == QDialogButtonBox::AcceptRole)
            return qobject_cast<QPushButton *>(button);
    }
    return nullptr;
}
