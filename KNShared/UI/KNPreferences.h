#pragma once

#include "UI/KNSharedUIExport.h"

#include <QFont>
#include <QString>

/// The user's preferences about how things look and run, kept in KNUserDefaults. Who shows something by them
/// observes the notification. On the UI thread.
struct KNSHAREDUI_EXPORT KNPreferences
{
    enum class Theme { FollowsDesktop, Light, Dark };
    /// How grids show dates: as the kind of server has it (to the millisecond), or with all that is stored.
    enum class DateFormat { Milliseconds, AsStored };

    /// Posted at the default notification centre after save().
    static const QString ChangedNotificationName;

    QFont editorFont; ///< of fixed width
    int tabWidth = 4; ///< in spaces
    int rowLimit = 0; ///< rows of each result that are kept; 0 for all
    QString nullText = QStringLiteral("NULL");
    DateFormat dateFormat = DateFormat::Milliseconds;
    Theme theme = Theme::FollowsDesktop;
    bool reopensTabs = true; ///< the tabs of the last session come back when its connection is opened

    bool tracesProtocol = false; ///< from the program's start on

    static KNPreferences current();
    /// What holds as long as the user has chosen nothing.
    static KNPreferences defaults();
    void save() const;

    friend bool operator==(const KNPreferences &, const KNPreferences &) = default;
};
