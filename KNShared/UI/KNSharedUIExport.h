#pragma once

#include <QtCore/qglobal.h>

/// Marks the KNSharedUI symbols available to programs and connectors.
#if defined(KNSHAREDUI_LIBRARY)
#define KNSHAREDUI_EXPORT Q_DECL_EXPORT
#else
#define KNSHAREDUI_EXPORT Q_DECL_IMPORT
#endif
