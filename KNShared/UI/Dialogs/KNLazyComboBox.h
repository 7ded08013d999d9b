#pragma once

#include "UI/KNSharedUIExport.h"

#include <QComboBox>

/// A field with a list of texts, which may be filled only when the user opens it. On the UI thread.
class KNSHAREDUI_EXPORT KNLazyComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit KNLazyComboBox(QWidget *parent = nullptr);

    /// Puts the texts into the list; what the field holds stays.
    void setTexts(const QStringList &texts);
    void showPopup() override;
    void hidePopup() override;

Q_SIGNALS:
    /// The list is about to open and is empty.
    void needsTexts();
    /// The user has chosen from the open list; a text that is typed chooses nothing, be it that of an item.
    void chosen(int index);

private:
    bool m_isBeingClosed = false;
};
