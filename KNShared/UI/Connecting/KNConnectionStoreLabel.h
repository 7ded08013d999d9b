#pragma once

#include "UI/KNSharedUIExport.h"

#include <QLabel>

class SQLRecentConnectionList;

/// A small text about the remembered connections: what is wrong with their store, where they are stored, and
/// whether that is encrypted. On the UI thread.
class KNSHAREDUI_EXPORT KNConnectionStoreLabel : public QLabel
{
    Q_OBJECT

public:
    explicit KNConnectionStoreLabel(QWidget *parent = nullptr);

    /// `before` is shown in lines above the state.
    void showState(const SQLRecentConnectionList &list, const QStringList &before = {});

protected:
    /// Keeps the label high enough for its lines: forms do not ask for the height that a width needs.
    void resizeEvent(QResizeEvent *event) override;
};
