#include "UI/Dialogs/KNLazyComboBox.h"

#include <QListView>

KNLazyComboBox::KNLazyComboBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // The list would measure each of thousands of texts when it opens.
    if (auto *const list = qobject_cast<QListView *>(view()))
        list->setUniformItemSizes(true);
    // QComboBox also emits activated() when the focus leaves a field whose text equals an item.
    connect(this, &QComboBox::activated, this, [this](int index) {
        if (std::exchange(m_isBeingClosed, false))
            Q_EMIT chosen(index);
    });
}

void KNLazyComboBox::setTexts(const QStringList &texts)
{
    const QString current = currentText();
    clear();
    addItems(texts);
    setCurrentIndex(static_cast<int>(texts.indexOf(current)));
    setEditText(current);
}

void KNLazyComboBox::showPopup()
{
    if (count() == 0)
        Q_EMIT needsTexts();
    QComboBox::showPopup();
}

/// Closes the list and emits the selected item.
void KNLazyComboBox::hidePopup()
{
    m_isBeingClosed = true;
    QMetaObject::invokeMethod(
        this, [this] { m_isBeingClosed = false; }, Qt::QueuedConnection);
    QComboBox::hidePopup();
}
