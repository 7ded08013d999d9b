#pragma once

#include "UI/KNSharedUIExport.h"

#include <QComboBox>

/// An editable list that is filled when the user opens it. On the UI thread.
class KNSHAREDUI_EXPORT KNLazyComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit KNLazyComboBox(QWidget *parent = nullptr);

    /// Puts the texts into the list; what the field holds stays.
    void setTexts(const QStringList &texts);
    void showPopup() override;

Q_SIGNALS:
    /// The list is about to open and is empty.
    void needsTexts();
};
