#include "UI/Icons/KNIcon.h"

#include "Foundation/KNFormat.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

constexpr auto AccentColour = "#3d7fd6";

QColor textColour(QIcon::Mode mode)
{
    const QPalette palette = QApplication::palette();
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::WindowText);
    case QIcon::Selected:
        return palette.color(QPalette::HighlightedText);
    default:
        return palette.color(QPalette::WindowText);
    }
}

/// Paints an SVG text in the palette colours at the time of painting.
class SvgEngine : public QIconEngine
{
public:
    SvgEngine(QString name, QByteArray svg)
        : m_name(std::move(name))
        , m_svg(std::move(svg))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        QByteArray svg = m_svg;
        svg.replace("currentColor", textColour(mode).name().toLatin1());
        if (mode == QIcon::Selected) // the accent colour is often that of the selection
            svg.replace(AccentColour, textColour(mode).name().toLatin1());
        QSvgRenderer renderer(svg);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        if (mode == QIcon::Disabled)
            painter->setOpacity(0.5);
        renderer.render(painter, rect);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal) override
    {
        const QString key = KNFormat("KNIcon-%@-%dx%d-%d-%@", m_name, size.width(), size.height(),
                                     static_cast<int>(mode), textColour(mode).name());
        QPixmap pixmap;
        if (QPixmapCache::find(key, &pixmap))
            return pixmap;
        pixmap = QPixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        painter.end();
        QPixmapCache::insert(key, pixmap);
        return pixmap;
    }

    QIconEngine *clone() const override { return new SvgEngine(*this); }

private:
    const QString m_name;
    const QByteArray m_svg;
};

QIcon load(const QString &name)
{
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    return file.open(QIODevice::ReadOnly) ? QIcon(new SvgEngine(name, file.readAll())) : QIcon();
}

} // namespace

QIcon KNIcon::named(const QString &name)
{
    static QHash<QString, QIcon> icons;
    auto found = icons.find(name);
    if (found == icons.end())
        found = icons.insert(name, load(name));
    return *found;
}
