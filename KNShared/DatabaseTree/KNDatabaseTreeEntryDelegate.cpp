#include "DatabaseTree/KNDatabaseTreeEntryDelegate.h"

KNDatabaseTreeEntryDelegate::~KNDatabaseTreeEntryDelegate() = default;
