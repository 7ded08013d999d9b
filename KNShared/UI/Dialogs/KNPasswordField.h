#pragma once

#include "UI/KNSharedUIExport.h"

#include <QLineEdit>

/// A field for a secret, hidden unless the user presses the eye in it. On the UI thread.
class KNSHAREDUI_EXPORT KNPasswordField : public QLineEdit
{
    Q_OBJECT

public:
    explicit KNPasswordField(QWidget *parent = nullptr);

    bool showsText() const { return echoMode() == Normal; }
    void setShowsText(bool shows);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showEye();

    QAction *const m_eye;
};
