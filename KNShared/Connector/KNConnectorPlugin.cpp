#include "Connector/KNConnectorPlugin.h"

KNConnectorPlugin::~KNConnectorPlugin() = default;
