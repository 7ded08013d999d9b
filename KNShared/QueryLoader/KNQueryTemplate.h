#pragma once

#include "KNSharedExport.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// SQL texts with placeholders: upper-case names or column numbers in braces, like {TABLE_NAME} or {0}.
namespace KNQueryTemplate {

/// The names of the placeholders, without braces, each once, in their order.
KNSHARED_EXPORT QStringList placeholders(const QString &text);

/// The text with every occurrence of the placeholders that `values` names replaced, in one pass: braces in a
/// value mean nothing. Apostrophes of a value are doubled where the placeholder is a literal of its own,
/// '{NAME}'. Placeholders without a value stay.
KNSHARED_EXPORT QString filled(const QString &text, const QMap<QString, QString> &values);

} // namespace KNQueryTemplate
