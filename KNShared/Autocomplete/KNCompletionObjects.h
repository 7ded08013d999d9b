#pragma once

#include "Autocomplete/KNCompletionCandidates.h"
#include "Autocomplete/KNCompletionList.h"

/// Adds the objects of a catalog that can stand at the request's place: all with their schemas where these
/// are needed, or those of one schema, without it, unless `schema` is null. Tables in `related`, by schema
/// and name, come first.
void KNAddObjectCompletions(const KNCompletionRequest &request, const KNCompletionCatalog &catalog,
                            const QString &schema, const QList<QStringList> &related,
                            KNCompletionCandidates *candidates);
