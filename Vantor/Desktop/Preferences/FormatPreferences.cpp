#include "Desktop/Preferences/FormatPreferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QSpinBox>

FormatPreferences::FormatPreferences(QWidget *parent)
    : QGroupBox(tr("Formatting"), parent)
    , m_keywordCase(new QComboBox)
    , m_leadingCommas(new QCheckBox(tr("Co&mmas at the beginning of lines")))
    , m_indent(new QSpinBox)
    , m_width(new QSpinBox)
{
    m_keywordCase->addItems({tr("As typed"), tr("UPPER CASE"), tr("lower case")});
    m_indent->setRange(1, KNSQLFormatStyle::GreatestIndent);
    m_indent->setSuffix(tr(" spaces"));
    m_width->setRange(KNSQLFormatStyle::LeastWidth, KNSQLFormatStyle::GreatestWidth);
    m_width->setSuffix(tr(" characters"));
    auto *const form = new QFormLayout(this);
    form->addRow(tr("&Keywords:"), m_keywordCase);
    form->addRow(tr("&Indentation:"), m_indent);
    form->addRow(tr("Line lengt&h:"), m_width);
    form->addRow(m_leadingCommas);
}

void FormatPreferences::setFormatStyle(const KNSQLFormatStyle &style)
{
    m_keywordCase->setCurrentIndex(static_cast<int>(style.keywordCase));
    m_leadingCommas->setChecked(style.hasLeadingCommas);
    m_indent->setValue(style.indent);
    m_width->setValue(style.width);
}

KNSQLFormatStyle FormatPreferences::formatStyle() const
{
    return {.keywordCase = static_cast<KNSQLFormatStyle::KeywordCase>(m_keywordCase->currentIndex()),
            .hasLeadingCommas = m_leadingCommas->isChecked(),
            .indent = m_indent->value(),
            .width = m_width->value()};
}
