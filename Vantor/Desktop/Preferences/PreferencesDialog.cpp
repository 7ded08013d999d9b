#include "Desktop/Preferences/PreferencesDialog.h"

#include "Desktop/Preferences/FormatPreferences.h"
#include "Foundation/KNUserDefaults.h"
#include "UI/Dialogs/KNButtonOrder.h"
#include "UI/Snippets/KNSnippetsDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include <limits>

PreferencesDialog::PreferencesDialog(const KNConnectorPreferences &connector, QWidget *parent,
                                     KNSnippetStore *snippets)
    : QDialog(parent)
    , m_font(new QFontComboBox)
    , m_fontSize(new QSpinBox)
    , m_tabWidth(new QSpinBox)
    , m_rowLimit(new QSpinBox)
    , m_continuesAfterError(new QCheckBox(tr("&Continue a script after a batch with an error")))
    , m_nullText(new QLineEdit)
    , m_dateFormat(new QComboBox)
    , m_previewsRowChanges(new QCheckBox(tr("Show the statements of &edited rows before they run")))
    , m_sendsRowWhenLeft(new QCheckBox(tr("Send changes when you lea&ve the row")))
    , m_theme(new QComboBox)
    , m_reopensTabs(new QCheckBox(tr("&Reopen the tabs of the last session")))
    , m_completesWhileTyping(new QCheckBox(tr("Su&ggest names while typing")))
    , m_completionKeys(new QComboBox)
    , m_closesPairs(new QCheckBox(tr("Close &brackets and quotes")))
    , m_checksWhileTyping(new QCheckBox(tr("Check the synta&x while typing")))
    , m_snippets(new QPushButton(tr("Edit Snippets…")))
    , m_formatting(new FormatPreferences)
    , m_tracesProtocol(new QCheckBox(tr("&Write a trace of the protocol from the next start on")))
    , m_connector(connector)
{
    setWindowTitle(tr("Preferences"));
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                               QDialogButtonBox::RestoreDefaults);
    connect(buttons, &QDialogButtonBox::accepted, this, &PreferencesDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PreferencesDialog::reject);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this,
            &PreferencesDialog::restoreDefaults);
    auto *const layout = new QVBoxLayout(this);
    auto *const columns = new QHBoxLayout;
    auto *const left = new QVBoxLayout;
    auto *const right = new QVBoxLayout;
    layout->addLayout(columns);
    layout->addWidget(buttons);
    columns->addLayout(left);
    columns->addLayout(right);
    left->addWidget(makeEditorGroup());
    left->addWidget(m_formatting);
    right->addWidget(makeResultsGroup());
    right->addWidget(makeProgramGroup());
    if (!m_connector.booleans.isEmpty())
        right->addWidget(makeConnectorGroup());
    left->addStretch(1);
    right->addStretch(1);
    m_snippets->setVisible(snippets != nullptr);
    m_snippets->setAutoDefault(false);
    connect(m_snippets, &QPushButton::clicked, this, [this, snippets] {
        auto *const dialog = new KNSnippetsDialog(*snippets, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
    KNOrderButtons(*this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    fill(KNPreferences::current());
    fillConnectorGroup(false);
}

QWidget *PreferencesDialog::makeConnectorGroup()
{
    auto *const group = new QGroupBox(m_connector.title);
    auto *const form = new QFormLayout(group);
    for (const KNBooleanPreference &preference : m_connector.booleans) {
        auto *const box = new QCheckBox(preference.title);
        box->setToolTip(preference.toolTip);
        form->addRow(box);
        m_connectorBoxes.append(box);
    }
    return group;
}

void PreferencesDialog::fillConnectorGroup(bool withDefaults)
{
    for (int i = 0; i < m_connectorBoxes.size(); ++i) {
        const KNBooleanPreference &preference = m_connector.booleans[i];
        m_connectorBoxes[i]->setChecked(withDefaults ? preference.defaultValue
                                                     : KNUserDefaults::standardUserDefaults()->boolForKey(
                                                           preference.key, preference.defaultValue));
    }
}

void PreferencesDialog::saveConnectorGroup() const
{
    for (int i = 0; i < m_connectorBoxes.size(); ++i)
        KNUserDefaults::standardUserDefaults()->setObject(m_connector.booleans[i].key,
                                                          m_connectorBoxes[i]->isChecked());
}

void PreferencesDialog::restoreDefaults()
{
    fill(KNPreferences::defaults());
    fillConnectorGroup(true);
}

QWidget *PreferencesDialog::makeEditorGroup()
{
    auto *const group = new QGroupBox(tr("Editor"));
    auto *const form = new QFormLayout(group);
    m_font->setFontFilters(QFontComboBox::MonospacedFonts);
    m_font->setEditable(false);
    m_fontSize->setRange(6, 72);
    m_fontSize->setSuffix(tr(" pt"));
    m_tabWidth->setRange(1, 16);
    m_tabWidth->setSuffix(tr(" spaces"));
    form->addRow(tr("&Font:"), m_font);
    form->addRow(tr("&Size:"), m_fontSize);
    form->addRow(tr("&Tab width:"), m_tabWidth);
    form->addRow(m_completesWhileTyping);
    m_completionKeys->addItems({tr("Return and Tab"), tr("Tab"), tr("Return")});
    form->addRow(tr("Accept names by:"), m_completionKeys);
    form->addRow(m_closesPairs);
    m_checksWhileTyping->setToolTip(
        tr("The server checks the text half a second after the last key, without running it."));
    form->addRow(m_checksWhileTyping);
    m_snippets->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    form->addRow(m_snippets);
    return group;
}

QWidget *PreferencesDialog::makeResultsGroup()
{
    auto *const group = new QGroupBox(tr("Queries"));
    auto *const form = new QFormLayout(group);
    m_rowLimit->setRange(0, std::numeric_limits<int>::max());
    m_rowLimit->setSingleStep(1000);
    m_rowLimit->setGroupSeparatorShown(true);
    m_rowLimit->setSpecialValueText(tr("All rows"));
    m_rowLimit->setSuffix(tr(" rows"));
    m_dateFormat->addItems({tr("To the millisecond"), tr("All digits, as stored")});
    form->addRow(tr("Rows &per result:"), m_rowLimit);
    form->addRow(m_continuesAfterError);
    form->addRow(tr("Show &NULL as:"), m_nullText);
    form->addRow(tr("Show &dates:"), m_dateFormat);
    form->addRow(m_previewsRowChanges);
    m_sendsRowWhenLeft->setToolTip(tr("Otherwise changes of rows are kept until you apply them."));
    form->addRow(m_sendsRowWhenLeft);
    return group;
}

QWidget *PreferencesDialog::makeProgramGroup()
{
    auto *const group = new QGroupBox(tr("Program"));
    auto *const form = new QFormLayout(group);
    m_theme->addItems({tr("Same as desktop"), tr("Light"), tr("Dark")});
    form->addRow(tr("&Appearance:"), m_theme);
    form->addRow(m_reopensTabs);
    m_tracesProtocol->setToolTip(
        tr("The trace is a file in the folder of the logs. It holds statements and results, "
           "but no password of a login."));
    form->addRow(m_tracesProtocol);
    return group;
}

void PreferencesDialog::fill(const KNPreferences &preferences)
{
    m_font->setCurrentFont(preferences.editorFont);
    m_fontSize->setValue(preferences.editorFont.pointSize());
    m_tabWidth->setValue(preferences.tabWidth);
    m_rowLimit->setValue(preferences.rowLimit);
    m_continuesAfterError->setChecked(preferences.continuesAfterError);
    m_nullText->setText(preferences.nullText);
    m_dateFormat->setCurrentIndex(static_cast<int>(preferences.dateFormat));
    m_theme->setCurrentIndex(static_cast<int>(preferences.theme));
    m_reopensTabs->setChecked(preferences.reopensTabs);
    m_completesWhileTyping->setChecked(preferences.completesWhileTyping);
    m_completionKeys->setCurrentIndex(static_cast<int>(preferences.completionKeys));
    m_closesPairs->setChecked(preferences.closesPairs);
    m_checksWhileTyping->setChecked(preferences.checksWhileTyping);
    m_previewsRowChanges->setChecked(preferences.previewsRowChanges);
    m_formatting->setFormatStyle(preferences.formatStyle);
    m_sendsRowWhenLeft->setChecked(preferences.sendsRowWhenLeft);
    m_tracesProtocol->setChecked(preferences.tracesProtocol);
}

KNPreferences PreferencesDialog::edited() const
{
    KNPreferences preferences;
    preferences.editorFont = m_font->currentFont();
    preferences.editorFont.setPointSize(m_fontSize->value());
    preferences.tabWidth = m_tabWidth->value();
    preferences.rowLimit = m_rowLimit->value();
    preferences.continuesAfterError = m_continuesAfterError->isChecked();
    preferences.nullText = m_nullText->text();
    preferences.dateFormat = static_cast<KNPreferences::DateFormat>(m_dateFormat->currentIndex());
    preferences.theme = static_cast<KNPreferences::Theme>(m_theme->currentIndex());
    preferences.reopensTabs = m_reopensTabs->isChecked();
    preferences.completesWhileTyping = m_completesWhileTyping->isChecked();
    preferences.completionKeys = static_cast<KNPreferences::CompletionKeys>(m_completionKeys->currentIndex());
    preferences.closesPairs = m_closesPairs->isChecked();
    preferences.checksWhileTyping = m_checksWhileTyping->isChecked();
    preferences.previewsRowChanges = m_previewsRowChanges->isChecked();
    preferences.formatStyle = m_formatting->formatStyle();
    preferences.sendsRowWhenLeft = m_sendsRowWhenLeft->isChecked();
    preferences.tracesProtocol = m_tracesProtocol->isChecked();
    return preferences;
}

void PreferencesDialog::accept()
{
    saveConnectorGroup();
    edited().save();
    QDialog::accept();
}
