#include "RowEditing/KNTableStatements.h"

KNTableStatements::~KNTableStatements() = default;
