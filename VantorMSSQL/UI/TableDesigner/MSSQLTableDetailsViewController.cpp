#include "UI/TableDesigner/MSSQLTableDetailsViewController.h"

#include "Catalog/MSSQLObjectProperties.h"

namespace {

KNObjectPropertiesLoader loaderFor(const MSSQLTableDesignSession &session)
{
    return MSSQLObjectProperties::loader(session.settings(), "Properties_Object",
                                         {{QStringLiteral("SCHEMA"), session.table().schema},
                                          {QStringLiteral("OBJECT"), session.table().name}});
}

} // namespace

MSSQLTableDetailsViewController::MSSQLTableDetailsViewController(MSSQLTableDesignSession &session,
                                                                 QWidget *parent)
    : KNPropertiesView(loaderFor(session), parent)
{
    connect(&session, &MSSQLTableDesignSession::renamed, this,
            [this, &session] { setLoader(loaderFor(session)); });
    connect(&session, &MSSQLTableDesignSession::tableChanged, this, &KNPropertiesView::load);
}
