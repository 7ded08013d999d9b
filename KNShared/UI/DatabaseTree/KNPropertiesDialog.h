#pragma once

#include "UI/DatabaseTree/KNPropertiesView.h"

#include <QDialog>

/// Shows the properties of an object of the tree. It deletes itself when it is closed.
class KNSHAREDUI_EXPORT KNPropertiesDialog : public QDialog
{
    Q_OBJECT

public:
    /// `name` is the object's name, for the title.
    KNPropertiesDialog(const QString &name, KNObjectPropertiesLoader loader, QWidget *parent);

    QString text() const { return m_view->text(); }

private:
    KNPropertiesView *const m_view;
};
