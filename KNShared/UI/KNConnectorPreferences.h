#pragma once

#include <QList>
#include <QString>

/// A yes-or-no preference in the user defaults.
struct KNBooleanPreference
{
    QString key;   ///< in KNUserDefaults
    QString title; ///< of its check box, with a mnemonic
    QString toolTip;
    bool defaultValue = false;
};

/// The preferences that a connector adds to the preferences window.
struct KNConnectorPreferences
{
    QString title; ///< of their group
    QList<KNBooleanPreference> booleans;
};
