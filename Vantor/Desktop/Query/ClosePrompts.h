#pragma once

#include <QString>

#include <functional>

class KNError;
class QueryTab;

/// Asks whether edited rows of the results that are not applied may be lost. `proceed` is called if there are
/// none or the user agrees.
void confirmEditLoss(QueryTab &tab, const QString &consequence, const std::function<void()> &proceed);
/// Asks whether a running query may be stopped or an open transaction rolled back. `proceed` is called if
/// there is neither or the user agrees.
void confirmSessionLoss(QueryTab &tab, const std::function<void()> &proceed);
/// Asks whether an open transaction may be rolled back by a new session. `proceed` is called if there is none
/// or the user agrees.
void confirmReconnection(QueryTab &tab, const std::function<void()> &proceed);
/// Asks whether unsaved text is to be saved or discarded, and saves it. `proceed` is called if nothing is
/// unsaved any more or the text is discarded.
void confirmTextLoss(QueryTab &tab, const std::function<void()> &proceed);
/// Asks whether a query may run in a new session after one with state was lost for this reason: nothing runs
/// before the user is told what was lost. `proceed` is called if the user agrees.
void confirmNewSession(QueryTab &tab, const KNError &error, const std::function<void()> &proceed);
