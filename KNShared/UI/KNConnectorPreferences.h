#pragma once

#include <QList>
#include <QString>

/// A boolean preference in the user defaults.
struct KNBooleanPreference
{
    QString key;   ///< the key in KNUserDefaults
    QString title; ///< the check box title, with a mnemonic
    QString toolTip;
    bool defaultValue = false;
};

/// The preferences that a connector adds to the preferences window.
struct KNConnectorPreferences
{
    QString title; ///< the title of their group
    QList<KNBooleanPreference> booleans;
};
