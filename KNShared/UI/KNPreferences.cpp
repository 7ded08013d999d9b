#include "UI/KNPreferences.h"

#include "Foundation/KNNotificationCenter.h"
#include "Foundation/KNUserDefaults.h"

#include <QFontDatabase>
#include <QFontInfo>

#include <algorithm>

namespace {

const QString EditorFont = QStringLiteral("EditorFont");
const QString TabWidth = QStringLiteral("TabWidth");
const QString RowLimit = QStringLiteral("RowLimit");
const QString ContinuesAfterError = QStringLiteral("ContinuesAfterError");
const QString NullText = QStringLiteral("NullText");
const QString DateFormatKey = QStringLiteral("DateFormat");
const QString ThemeKey = QStringLiteral("Theme");
const QString ReopensTabs = QStringLiteral("ReopensTabs");
const QString CompletesWhileTyping = QStringLiteral("CompletesWhileTyping");
const QString CompletionKeysKey = QStringLiteral("CompletionKeys");
const QString ClosesPairs = QStringLiteral("ClosesPairs");
const QString ChecksWhileTyping = QStringLiteral("ChecksWhileTyping");
const QString FormatKeywordCase = QStringLiteral("FormatKeywordCase");
const QString FormatLeadingCommas = QStringLiteral("FormatLeadingCommas");
const QString FormatIndent = QStringLiteral("FormatIndent");
const QString FormatWidth = QStringLiteral("FormatWidth");
const QString PreviewsRowChanges = QStringLiteral("PreviewsRowChanges");
const QString SendsRowWhenLeft = QStringLiteral("SendsRowWhenLeft");
const QString TracesProtocol = QStringLiteral("TracesProtocol");

/// The stored number, or the default if there is none or it is out of range.
int number(const QString &key, int defaultValue, int minimum, int maximum)
{
    bool isNumber = false;
    const int value = KNUserDefaults::standardUserDefaults()->stringForKey(key).toInt(&isNumber);
    return isNumber && value >= minimum && value <= maximum ? value : defaultValue;
}

KNSQLFormatStyle storedFormatStyle()
{
    KNSQLFormatStyle style;
    style.keywordCase = static_cast<KNSQLFormatStyle::KeywordCase>(
        number(FormatKeywordCase, static_cast<int>(style.keywordCase), 0, 2));
    style.hasLeadingCommas = KNUserDefaults::standardUserDefaults()->boolForKey(FormatLeadingCommas);
    style.indent = number(FormatIndent, style.indent, 1, KNSQLFormatStyle::GreatestIndent);
    style.width =
        number(FormatWidth, style.width, KNSQLFormatStyle::LeastWidth, KNSQLFormatStyle::GreatestWidth);
    return style;
}

void storeFormatStyle(const KNSQLFormatStyle &style)
{
    KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    defaults.setObject(FormatKeywordCase, static_cast<int>(style.keywordCase));
    defaults.setObject(FormatLeadingCommas, style.hasLeadingCommas);
    defaults.setObject(FormatIndent, style.indent);
    defaults.setObject(FormatWidth, style.width);
}

} // namespace

const QString KNPreferences::ChangedNotificationName = QStringLiteral("KNPreferencesChangedNotification");

KNPreferences KNPreferences::defaults()
{
    KNPreferences preferences;
    // The system's font may be an alias that is not in font lists.
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    preferences.editorFont = QFont(QFontInfo(fixed).family(), fixed.pointSize());
    return preferences;
}

KNPreferences KNPreferences::current()
{
    const KNUserDefaults &stored = *KNUserDefaults::standardUserDefaults();
    KNPreferences preferences = defaults();
    const QString description = stored.stringForKey(EditorFont);
    if (QFont font; !description.isEmpty() && font.fromString(description))
        preferences.editorFont = font;
    preferences.tabWidth = number(TabWidth, preferences.tabWidth, 1, 16);
    preferences.rowLimit = number(RowLimit, 0, 0, std::numeric_limits<int>::max());
    preferences.continuesAfterError = stored.boolForKey(ContinuesAfterError);
    preferences.nullText = stored.stringForKey(NullText, preferences.nullText);
    preferences.dateFormat = static_cast<DateFormat>(number(DateFormatKey, 0, 0, 1));
    preferences.theme = static_cast<Theme>(number(ThemeKey, 0, 0, 2));
    preferences.reopensTabs = stored.boolForKey(ReopensTabs, true);
    preferences.completesWhileTyping = stored.boolForKey(CompletesWhileTyping, true);
    preferences.completionKeys = static_cast<CompletionKeys>(number(CompletionKeysKey, 0, 0, 2));
    preferences.closesPairs = stored.boolForKey(ClosesPairs, true);
    preferences.checksWhileTyping = stored.boolForKey(ChecksWhileTyping);
    preferences.previewsRowChanges = stored.boolForKey(PreviewsRowChanges, true);
    preferences.sendsRowWhenLeft = stored.boolForKey(SendsRowWhenLeft);
    preferences.tracesProtocol = stored.boolForKey(TracesProtocol);
    preferences.formatStyle = storedFormatStyle();
    return preferences;
}

void KNPreferences::save() const
{
    KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    defaults.setObject(EditorFont, editorFont.toString());
    defaults.setObject(TabWidth, tabWidth);
    defaults.setObject(RowLimit, rowLimit);
    defaults.setObject(ContinuesAfterError, continuesAfterError);
    defaults.setObject(NullText, nullText);
    defaults.setObject(DateFormatKey, static_cast<int>(dateFormat));
    defaults.setObject(ThemeKey, static_cast<int>(theme));
    defaults.setObject(ReopensTabs, reopensTabs);
    defaults.setObject(CompletesWhileTyping, completesWhileTyping);
    defaults.setObject(CompletionKeysKey, static_cast<int>(completionKeys));
    defaults.setObject(ClosesPairs, closesPairs);
    defaults.setObject(ChecksWhileTyping, checksWhileTyping);
    defaults.setObject(PreviewsRowChanges, previewsRowChanges);
    defaults.setObject(SendsRowWhenLeft, sendsRowWhenLeft);
    defaults.setObject(TracesProtocol, tracesProtocol);
    storeFormatStyle(formatStyle);
    defaults.synchronize();
    KNNotificationCenter::defaultCenter()->post(ChangedNotificationName);
}
