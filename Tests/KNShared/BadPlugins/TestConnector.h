#pragma once

#include "Connector/KNConnectorPlugin.h"

#include <QObject>

/// What the test modules have in common: a connector without connection settings.
class TestConnector : public QObject, public KNConnectorPlugin
{
public:
    QString name() const override { return QStringLiteral("Test server"); }
    std::shared_ptr<VantorDBC> createConnectionDetails() const override { return nullptr; }
};
