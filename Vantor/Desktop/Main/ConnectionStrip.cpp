#include "Desktop/Main/ConnectionStrip.h"

#include "Database/VantorDBC.h"
#include "Recent/KNDBCTabColorHelper.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

/// Production connections without a colour are red.
QColor colourOf(const VantorDBC &details)
{
    const QString colour = KNDBCTabColorHelper::colorForId(details.connectionId());
    if (!colour.isNull())
        return QColor(colour);
    return details.isProduction() ? QColor(0xd0, 0x39, 0x3e) : QColor();
}

} // namespace

ConnectionStrip::ConnectionStrip(const VantorDBC &details, QWidget *parent)
    : QWidget(parent)
{
    constexpr int PlainHeight = 3;
    constexpr int DarkBelow = 150; // of 255
    const QColor ground = colourOf(details);
    QPalette colours(ground);
    colours.setColor(QPalette::WindowText, qGray(ground.rgb()) < DarkBelow ? Qt::white : Qt::black);
    setAutoFillBackground(true);
    setPalette(colours);
    if (!details.isProduction()) {
        setFixedHeight(PlainHeight);
        return;
    }
    auto *const label = new QLabel(tr("PRODUCTION"));
    label->setAlignment(Qt::AlignCenter);
    label->setToolTip(
        tr("Vantor asks before statements that change all rows of a table, or drop or empty an object."));
    QFont font = label->font();
    font.setBold(true);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 2);
    label->setFont(font);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->addWidget(label);
}

QWidget *ConnectionStrip::above(QWidget *widget, const VantorDBC &details)
{
    if (!colourOf(details).isValid())
        return widget;
    auto *const both = new QWidget;
    auto *const layout = new QVBoxLayout(both);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(new ConnectionStrip(details));
    layout->addWidget(widget, 1);
    return both;
}
