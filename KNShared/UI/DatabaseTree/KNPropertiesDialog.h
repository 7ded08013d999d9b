#pragma once

#include "DatabaseTree/KNObjectProperties.h"
#include "UI/KNSharedUIExport.h"

#include <QDialog>

class KNProgressMark;
class QLabel;
class QTreeWidget;

/// Shows the properties of an object of the tree as a list of names and values. It reads them in the
/// background, when it is created and at every refresh. It deletes itself when it is closed.
class KNSHAREDUI_EXPORT KNPropertiesDialog : public QDialog
{
    Q_OBJECT

public:
    /// `name` is the object's name, for the title.
    KNPropertiesDialog(const QString &name, KNObjectPropertiesLoader loader, QWidget *parent);

    /// The list as text: a line for each property, with a tab between name and value.
    QString text() const;

private:
    void load();
    void showProperties(const KNObjectProperties &properties, const KNError &error);
    void copy() const;

    const KNObjectPropertiesLoader m_loader;
    QTreeWidget *const m_list;
    QLabel *const m_notice; ///< the error, or that there is nothing to show
    KNProgressMark *const m_mark;
    quint64 m_load = 0; ///< counts loads; results of earlier ones are ignored
};
