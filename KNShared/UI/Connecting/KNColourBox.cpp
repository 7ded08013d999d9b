#include "UI/Connecting/KNColourBox.h"

#include <QPainter>

namespace {

QIcon swatch(const QColor &colour)
{
    constexpr int Size = 16;
    constexpr int Inset = 2;
    QPixmap pixmap(Size, Size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(pixmap.rect().adjusted(Inset, Inset, -Inset, -Inset), 2, 2);
    return QIcon(pixmap);
}

} // namespace

KNColourBox::KNColourBox(QWidget *parent)
    : QComboBox(parent)
{
    addItem(tr("Automatic"), QString());
    const auto add = [this](const QString &name, const char *colour) {
        addItem(swatch(QColor(QLatin1String(colour))), name, QString::fromLatin1(colour));
    };
    add(tr("Red"), "#d0393e");
    add(tr("Orange"), "#c0640c");
    add(tr("Yellow"), "#93790a");
    add(tr("Green"), "#3a8a3f");
    add(tr("Teal"), "#15868c");
    add(tr("Blue"), "#3578c8");
    add(tr("Purple"), "#8a5fc0");
    add(tr("Pink"), "#c24b93");
    add(tr("Grey"), "#737b86");
}

void KNColourBox::setColour(const QString &colour)
{
    if (findData(colour) < 0)
        addItem(swatch(QColor(colour)), colour, colour);
    setCurrentIndex(findData(colour));
}
