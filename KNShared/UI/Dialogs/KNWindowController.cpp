#include "UI/Dialogs/KNWindowController.h"

#include "UI/Dialogs/KNButtonOrder.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QPushButton>

namespace {

/// The first widget for the Tab key that is no button; null if there is none.
QWidget *firstField(const QDialog &dialog)
{
    for (QWidget *widget = dialog.nextInFocusChain(); widget != &dialog;
         widget = widget->nextInFocusChain()) {
        const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !widget->focusProxy();
        if (takesTab && widget->isEnabledTo(&dialog) && widget->isVisibleTo(&dialog) &&
            !qobject_cast<QAbstractButton *>(widget))
            return widget;
    }
    return nullptr;
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
    if (QWidget *const field = focusWidget() ? nullptr : firstField(*this))
        field->setFocus();
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
