#pragma once

#include <QtGlobal>

#include <memory>

class KNConnectorUserInterface;
class KNDatabaseTreeContextHelper;
class QObject;
class QueryTab;

/// Lets the connector add items to the context menu of a query's editor, which `target` performs. The
/// connection ends with `window`.
void connectEditorMenu(QueryTab &tab, QObject &window, const KNConnectorUserInterface &connector,
                       const std::shared_ptr<KNDatabaseTreeContextHelper> &target);
