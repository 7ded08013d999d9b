#pragma once

#include "KNSharedExport.h"

/// Who connects through an SSH tunnel, such as a dialog. Nothing is asked of it while a connection is being
/// opened: an unknown host key ends the attempt with an error, and the delegate connects again once its user
/// has accepted the key.
class KNSHARED_EXPORT KNSSHTunnelDelegate
{
public:
    virtual ~KNSSHTunnelDelegate();
};
