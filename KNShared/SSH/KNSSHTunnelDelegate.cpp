#include "SSH/KNSSHTunnelDelegate.h"

KNSSHTunnelDelegate::~KNSSHTunnelDelegate() = default;
