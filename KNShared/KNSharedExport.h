#pragma once

#include <QtCore/qglobal.h>

/// Marks the KNShared symbols available to programs and connectors.
#if defined(KNSHARED_LIBRARY)
#define KNSHARED_EXPORT Q_DECL_EXPORT
#else
#define KNSHARED_EXPORT Q_DECL_IMPORT
#endif
