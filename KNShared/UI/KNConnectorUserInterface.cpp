#include "UI/KNConnectorUserInterface.h"

KNConnectorUserInterface::~KNConnectorUserInterface() = default;
