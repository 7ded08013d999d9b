#include "Recent/KNDBCTabColorHelper.h"

#include <QCryptographicHash>
#include <QHash>

#include <array>
#include <cmath>
#include <mutex>

namespace {

struct Colours
{
    std::mutex mutex;
    QHash<QString, QString> byId; ///< guarded by mutex
};

Colours &colours()
{
    static Colours instance;
    return instance;
}

/// Red, green and blue from 0 to 1.
using Rgb = std::array<double, 3>;

/// `hue` in turns, from 0 to 1.
Rgb rgbOf(double hue, double saturation, double lightness)
{
    const double amplitude = saturation * std::min(lightness, 1 - lightness);
    const auto channel = [&](double offset) {
        const double k = std::fmod(offset + hue * 12, 12);
        return lightness - amplitude * std::max(-1.0, std::min({k - 3, 9 - k, 1.0}));
    };
    return {channel(0), channel(8), channel(4)};
}

/// The relative luminance that WCAG 2 defines for contrasts.
double luminanceOf(const Rgb &rgb)
{
    const auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(rgb[0]) + 0.7152 * linear(rgb[1]) + 0.0722 * linear(rgb[2]);
}

/// The name determines the hue; the lightness gives equal contrasts to white and to near-black.
QString colourOf(const QString &alias)
{
    constexpr double Luminance = 0.2;
    constexpr double Saturation = 0.7;
    constexpr int Hues = 24; // more hues cannot be told apart
    const QByteArray hash = QCryptographicHash::hash(alias.toUtf8(), QCryptographicHash::Sha1);
    const double hue = (static_cast<unsigned char>(hash.at(0)) % Hues) / double(Hues);
    double darkest = 0;
    double lightest = 1;
    for (int i = 0; i < 12; ++i) {
        const double middle = (darkest + lightest) / 2;
        (luminanceOf(rgbOf(hue, Saturation, middle)) < Luminance ? darkest : lightest) = middle;
    }
    QString text = QStringLiteral("#");
    for (const double channel : rgbOf(hue, Saturation, darkest))
        text += QString::number(std::lround(channel * 255), 16).rightJustified(2, QLatin1Char('0'));
    return text;
}

} // namespace

void KNDBCTabColorHelper::setColorFromAliasTemporary(const QString &alias, const QString &forId)
{
    Colours &all = colours();
    const std::lock_guard lock(all.mutex);
    if (alias.isEmpty())
        all.byId.remove(forId);
    else
        all.byId.insert(forId, colourOf(alias));
}

void KNDBCTabColorHelper::setColorForId(const QString &colour, const QString &connectionId)
{
    Colours &all = colours();
    const std::lock_guard lock(all.mutex);
    all.byId.insert(connectionId, colour);
}

QString KNDBCTabColorHelper::colorForId(const QString &connectionId)
{
    Colours &all = colours();
    const std::lock_guard lock(all.mutex);
    return all.byId.value(connectionId);
}
