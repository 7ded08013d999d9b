#include "UI/DatabaseTree/MSSQLTreePreferences.h"

#include "Foundation/KNUserDefaults.h"

bool MSSQLTreePreferences::isOn(const char *key)
{
    return KNUserDefaults::standardUserDefaults()->boolForKey(QString::fromLatin1(key));
}

void MSSQLTreePreferences::setOn(const char *key, bool isOn)
{
    KNUserDefaults::standardUserDefaults()->setObject(QString::fromLatin1(key), isOn);
}
