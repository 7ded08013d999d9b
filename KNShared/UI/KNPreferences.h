#pragma once

#include "SQL/Format/KNSQLFormatStyle.h"
#include "UI/KNSharedUIExport.h"

#include <QFont>
#include <QString>

/// The user's preferences for display and execution, stored in KNUserDefaults. Components that display
/// something based on them observe the notification. On the UI thread.
struct KNSHAREDUI_EXPORT KNPreferences
{
    enum class Theme { FollowsDesktop, Light, Dark };
    /// How grids show dates: as the connector formats them (to the millisecond), or with all stored parts.
    enum class DateFormat { Milliseconds, AsStored };

    /// The keys that accept a completion.
    enum class CompletionKeys { ReturnAndTab, Tab, Return };

    /// Posted at the default notification centre after save().
    static const QString ChangedNotificationName;

    QFont editorFont;                 ///< fixed-width
    int tabWidth = 4;                 ///< in spaces
    int rowLimit = 0;                 ///< maximum rows kept per result; 0 for all
    bool continuesAfterError = false; ///< whether a script continues after a batch that had an error
    QString nullText = QStringLiteral("NULL");
    DateFormat dateFormat = DateFormat::Milliseconds;
    Theme theme = Theme::FollowsDesktop;
    bool reopensTabs = true; ///< whether opening a connection restores the tabs of its last session

    bool completesWhileTyping = true; ///< whether the editor offers names without Ctrl+Space
    CompletionKeys completionKeys = CompletionKeys::ReturnAndTab;
    bool closesPairs = true;        ///< whether an opening bracket or quote brings the closing one
    bool checksWhileTyping = false; ///< whether the server checks the syntax after pauses in typing
    bool previewsRowChanges = true; ///< whether statements of edited rows are shown before they run
    bool sendsRowWhenLeft = false;  ///< whether changes of a row are applied when the cursor leaves it
    bool tracesProtocol = false;    ///< from the start of the program
    KNSQLFormatStyle formatStyle;

    static KNPreferences current();
    /// The default preferences.
    static KNPreferences defaults();
    void save() const;

    friend bool operator==(const KNPreferences &, const KNPreferences &) = default;
};
