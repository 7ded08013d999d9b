#include "UI/Connecting/KNLazyComboBox.h"

KNLazyComboBox::KNLazyComboBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
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
