#include "Export/KNScriptOptions.h"

QString KNScriptOptions::reasonAgainst(Switch option) const
{
    if (option == &KNScriptOptions::schema || option == &KNScriptOptions::data)
        return {};
    if (option == &KNScriptOptions::csvRows) {
        if (language == Language::MySQL)
            return tr("For MySQL, rows are written as INSERT statements.");
        return data ? QString() : tr("No rows are written.");
    }
    if (!schema)
        return tr("Only rows are written.");
    if (language == Language::MySQL && option != &KNScriptOptions::drops)
        return tr("For MySQL, only tables with their columns, primary keys and rows are written.");
    if (option == &KNScriptOptions::ifNotExists && drops)
        return tr("Existing objects are dropped first.");
    return {};
}
