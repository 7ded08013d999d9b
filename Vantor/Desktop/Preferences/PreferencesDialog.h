#pragma once

#include "UI/KNConnectorPreferences.h"
#include "UI/KNPreferences.h"

#include <QDialog>

class FormatPreferences;
class KNSnippetStore;
class QCheckBox;
class QComboBox;
class QFontComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// The user's preferences, including those of the connector. They are saved when the dialog is accepted.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    /// Snippets cannot be edited without a store, which outlives the dialog.
    explicit PreferencesDialog(const KNConnectorPreferences &connector = {}, QWidget *parent = nullptr,
                               KNSnippetStore *snippets = nullptr);

    void accept() override;

private:
    KNPreferences edited() const;
    void fill(const KNPreferences &preferences);
    void fillConnectorGroup(bool withDefaults);
    void saveConnectorGroup() const;
    void restoreDefaults();
    QWidget *makeEditorGroup();
    QWidget *makeResultsGroup();
    QWidget *makeProgramGroup();
    QWidget *makeConnectorGroup();

    QFontComboBox *const m_font;
    QSpinBox *const m_fontSize;
    QSpinBox *const m_tabWidth;
    QSpinBox *const m_rowLimit;
    QCheckBox *const m_continuesAfterError;
    QLineEdit *const m_nullText;
    QComboBox *const m_dateFormat;
    QCheckBox *const m_previewsRowChanges;
    QCheckBox *const m_sendsRowWhenLeft;
    QComboBox *const m_theme;
    QCheckBox *const m_reopensTabs;
    QCheckBox *const m_completesWhileTyping;
    QComboBox *const m_completionKeys;
    QCheckBox *const m_closesPairs;
    QCheckBox *const m_checksWhileTyping;
    QPushButton *const m_snippets;
    FormatPreferences *const m_formatting;
    QCheckBox *const m_tracesProtocol;
    const KNConnectorPreferences m_connector;
    QList<QCheckBox *> m_connectorBoxes; ///< of m_connector.booleans
};
