#pragma once

#include "KNSharedExport.h"

/// An object that connects through an SSH tunnel, such as a dialog. It is not called while a connection is
/// being opened: an unknown host key fails the attempt with an error, and the delegate connects again after
/// its user has accepted the key.
class KNSHARED_EXPORT KNSSHTunnelDelegate
{
public:
    virtual ~KNSSHTunnelDelegate();
};
