#pragma once

#include "KNSharedExport.h"

#include <QString>

/// How well a name suits what was typed.
enum class KNCompletionMatch { None, Part, WordStarts, Prefix };

/// Compares without regard to case: the beginning of the name, then the beginnings of its words ("cn" for
/// CompanyName, "od" for order_details), then any part. Everything suits an empty text.
KNSHARED_EXPORT KNCompletionMatch KNMatchCompletion(QStringView name, QStringView typed);
