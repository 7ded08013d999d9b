#include "UI/Dialogs/KNButtonOrder.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLayout>

namespace {

void orderButtonsOf(QDialogButtonBox &box)
{
    box.setFocusProxy(nullptr); // the box would lead back to its first button
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

void KNOrderButtons(const QDialog &dialog)
{
    for (QDialogButtonBox *const box : dialog.findChildren<QDialogButtonBox *>())
        orderButtonsOf(*box);
}
