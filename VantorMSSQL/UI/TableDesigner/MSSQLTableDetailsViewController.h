#pragma once

#include "UI/DatabaseTree/KNPropertiesView.h"
#include "UI/TableDesigner/MSSQLTableDesignSession.h"

/// What the catalog says of a table: rows, space, dates, compression and the like. On the UI thread.
class MSSQLTableDetailsViewController : public KNPropertiesView
{
    Q_OBJECT

public:
    explicit MSSQLTableDetailsViewController(MSSQLTableDesignSession &session, QWidget *parent = nullptr);
};
