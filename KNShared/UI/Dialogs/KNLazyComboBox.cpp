#include "UI/Dialogs/KNLazyComboBox.h"

KNLazyComboBox::KNLazyComboBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // A field that is left with the text of an item says activated, too.
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

/// The list closes, and says then what was chosen.
void KNLazyComboBox::hidePopup()
{
    m_isBeingClosed = true;
    QMetaObject::invokeMethod(
        this, [this] { m_isBeingClosed = false; }, Qt::QueuedConnection);
    QComboBox::hidePopup();
}
