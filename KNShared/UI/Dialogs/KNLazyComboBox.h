#pragma once

#include "UI/KNSharedUIExport.h"

#include <QComboBox>

/// An editable combo box whose list may be filled when the user opens it. On the UI thread.
class KNSHAREDUI_EXPORT KNLazyComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit KNLazyComboBox(QWidget *parent = nullptr);

    /// Replaces the list and keeps the text of the field.
    void setTexts(const QStringList &texts);
    void showPopup() override;
    void hidePopup() override;

Q_SIGNALS:
    /// Emitted when an empty list is about to open.
    void needsTexts();
    /// Emitted when the user selects an item of the open list, not when the typed text equals an item.
    void chosen(int index);

private:
    bool m_isBeingClosed = false;
};
