#include "UI/Results/KNColumnFilterDialog.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/KNPreferences.h"
#include "UI/Results/KNCountText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>

namespace {

constexpr int ValueRole = Qt::UserRole;      // the displayed text
constexpr int NullRole = Qt::UserRole + 1;   // whether it is NULL
constexpr qsizetype LongestShownValue = 200; // characters

} // namespace

KNColumnFilterDialog::KNColumnFilterDialog(const KNResultTableModel &model, int column, QWidget *parent)
    : KNWindowController(parent)
    , m_field(new QLineEdit(this))
    , m_all(new QCheckBox(tr("&All values"), this))
    , m_values(new QListWidget(this))
    , m_remark(new QLabel(tr("Reading the values…"), this))
{
    m_filter.column = column;
    if (const KNColumnFilter *const present = model.arrangement().filterOf(column))
        m_filter = *present;
    setWindowTitle(KNFormat(tr("Filter %@"), model.shownName(column)));
    arrange();
    connect(m_all, &QCheckBox::clicked, this, [this](bool isChecked) {
        m_all->setTristate(false);
        const QSignalBlocker blocker(m_values);
        for (int row = 0; row < m_values->count(); ++row)
            m_values->item(row)->setCheckState(isChecked ? Qt::Checked : Qt::Unchecked);
    });
    connect(m_values, &QListWidget::itemChanged, this, &KNColumnFilterDialog::updateAll);
    readValues(model);
}

KNColumnFilterDialog::~KNColumnFilterDialog()
{
    *m_cancelled = true;
}

void KNColumnFilterDialog::arrange()
{
    auto *const label = new QLabel(tr("&Contains:"), this);
    label->setBuddy(m_field);
    m_field->setText(m_filter.text);
    m_field->setAccessibleName(tr("Text that the values contain"));
    m_field->setClearButtonEnabled(true);
    m_values->setAccessibleName(tr("Values to show"));
    m_values->setUniformItemSizes(true);
    m_values->hide();
    m_all->hide();
    m_remark->setTextFormat(Qt::PlainText);
    m_remark->setWordWrap(true);
    auto *const top = new QHBoxLayout;
    top->addWidget(label);
    top->addWidget(m_field, 1);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_all);
    layout->addWidget(m_values, 1);
    layout->addWidget(m_remark);
    layout->addStretch();
    layout->addWidget(makeButtons(tr("Filter")));
    resize(fontMetrics().averageCharWidth() * 50, fontMetrics().height() * 22);
    m_field->setFocus();
}

void KNColumnFilterDialog::readValues(const KNResultTableModel &model)
{
    KNDispatch::globalQueue([self = QPointer(this), result = model.result(), column = m_filter.column,
                             display = model.display(), cancelled = m_cancelled] {
        const auto values = KNDistinctValues::of(*result, column, display, *cancelled);
        KNDispatch::mainQueue([self, values] {
            if (self && values)
                self->showValues(*values);
        });
    });
}

void KNColumnFilterDialog::showValues(const KNDistinctValues &values)
{
    m_isLoading = false;
    // A choice among some of the values would hide the others unseen.
    m_remark->setVisible(!values.areAll);
    m_remark->setText(
        KNFormat(tr("The column has more than %@ values. Enter a text that the values to show contain."),
                 KNCountText(values.texts.size())));
    m_values->setVisible(values.areAll);
    m_all->setVisible(values.areAll);
    if (!values.areAll)
        return;
    const QSignalBlocker blocker(m_values);
    if (values.hasNull)
        addValue({}, true);
    for (const QString &text : values.texts)
        addValue(text, false);
    updateAll();
}

void KNColumnFilterDialog::addValue(const QString &text, bool isNull)
{
    const QString shown = isNull           ? KNPreferences::current().nullText
                          : text.isEmpty() ? tr("(empty)")
                                           : text.left(LongestShownValue).simplified();
    auto *const item = new QListWidgetItem(shown, m_values);
    item->setData(ValueRole, text);
    item->setData(NullRole, isNull);
    if (isNull || text.isEmpty()) {
        QFont font = m_values->font();
        font.setItalic(true);
        item->setFont(font);
    }
    const bool isShown =
        !m_filter.choosesValues || (isNull ? m_filter.includesNull : m_filter.values.contains(text));
    item->setCheckState(isShown ? Qt::Checked : Qt::Unchecked);
}

void KNColumnFilterDialog::updateAll()
{
    int checked = 0;
    for (int row = 0; row < m_values->count(); ++row)
        checked += m_values->item(row)->checkState() == Qt::Checked ? 1 : 0;
    m_all->setCheckState(checked == m_values->count() ? Qt::Checked
                         : checked == 0               ? Qt::Unchecked
                                                      : Qt::PartiallyChecked);
}

QString KNColumnFilterDialog::remark() const
{
    return m_remark->isHidden() ? QString() : m_remark->text();
}

KNColumnFilter KNColumnFilterDialog::filter() const
{
    KNColumnFilter filter = m_filter;
    filter.text = m_field->text();
    if (m_isLoading)
        return filter;
    filter.choosesValues = m_values->count() > 0 && m_all->checkState() != Qt::Checked;
    filter.values.clear();
    filter.includesNull = false;
    for (int row = 0; filter.choosesValues && row < m_values->count(); ++row) {
        const QListWidgetItem *const item = m_values->item(row);
        if (item->checkState() != Qt::Checked)
            continue;
        if (item->data(NullRole).toBool())
            filter.includesNull = true;
        else
            filter.values.insert(item->data(ValueRole).toString());
    }
    return filter;
}
