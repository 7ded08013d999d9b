#pragma once

#include "UI/KNSharedUIExport.h"

#include <QComboBox>

/// Chooses the colour of a connection: one of a few that are readable in light and dark windows, or the one
/// that the connection's name determines. On the UI thread.
class KNSHAREDUI_EXPORT KNColourBox : public QComboBox
{
    Q_OBJECT

public:
    explicit KNColourBox(QWidget *parent = nullptr);

    /// "#rrggbb"; empty for the automatic one. A colour that is not in the list is added to it.
    QString colour() const { return currentData().toString(); }
    void setColour(const QString &colour);
};
