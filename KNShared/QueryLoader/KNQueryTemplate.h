#pragma once

#include "KNSharedExport.h"

#include <QMap>
#include <QString>
#include <QStringList>

/// SQL texts with placeholders: upper-case names or column numbers in braces, such as {TABLE_NAME} or {0}.
namespace KNQueryTemplate {

/// Returns the distinct placeholder names without braces, in order of appearance.
KNSHARED_EXPORT QStringList placeholders(const QString &text);

/// Replaces every occurrence of the placeholders in `values` in one pass: braces in a value have no effect.
/// Apostrophes in a value are doubled if the placeholder is a whole literal, '{NAME}'. Placeholders without a
/// value stay unchanged.
KNSHARED_EXPORT QString filled(const QString &text, const QMap<QString, QString> &values);

} // namespace KNQueryTemplate
