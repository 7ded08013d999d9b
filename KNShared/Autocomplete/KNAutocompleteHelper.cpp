#include "Autocomplete/KNAutocompleteHelper.h"

KNAutocompleteHelper::~KNAutocompleteHelper() = default;
