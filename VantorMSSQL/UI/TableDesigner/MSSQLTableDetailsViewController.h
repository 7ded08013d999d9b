#pragma once

#include "UI/DatabaseTree/KNPropertiesView.h"
#include "UI/TableDesigner/MSSQLTableDesignSession.h"

/// Shows rows, space, dates, compression and other properties of a table. On the UI thread.
class MSSQLTableDetailsViewController : public KNPropertiesView
{
    Q_OBJECT

public:
    explicit MSSQLTableDetailsViewController(MSSQLTableDesignSession &session, QWidget *parent = nullptr);
};
