#include "UI/Dialogs/KNWindowController.h"

#include "UI/Dialogs/KNButtonOrder.h"

#include <QDialogButtonBox>
#include <QPushButton>

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
    KNOrderButtons(*this);
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
