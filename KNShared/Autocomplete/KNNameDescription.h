#pragma once

#include "Autocomplete/KNNameReference.h"

/// A few lines about a name for a person: the type of a variable or column, the columns of a table, the
/// parameters of a routine or function. Plain text; null if nothing is known about the name.
KNSHARED_EXPORT QString KNNameDescription(const KNNameReference &reference);
