#pragma once

#include "DatabaseTree/KNObjectProperties.h"
#include "UI/KNSharedUIExport.h"

#include <QWidget>

class KNProgressMark;
class QLabel;
class QTreeWidget;

/// The properties of an object of the tree as a list of names and values. It reads them in the background,
/// when it is created and at every refresh.
class KNSHAREDUI_EXPORT KNPropertiesView : public QWidget
{
    Q_OBJECT

public:
    explicit KNPropertiesView(KNObjectPropertiesLoader loader, QWidget *parent = nullptr);

    void load();
    /// Replaces the loader, for example after a rename.
    void setLoader(KNObjectPropertiesLoader loader) { m_loader = std::move(loader); }
    /// The list as text: a line for each property, with a tab between name and value.
    QString text() const;

private:
    void showProperties(const KNObjectProperties &properties, const KNError &error);
    void copy() const;

    KNObjectPropertiesLoader m_loader;
    QTreeWidget *const m_list;
    QLabel *const m_notice; ///< the error, or that there is nothing to show
    KNProgressMark *const m_mark;
    quint64 m_load = 0; ///< counts loads; results of earlier ones are ignored
};
