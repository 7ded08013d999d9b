#include "UI/Editor/KNSQLColours.h"

namespace {

KNSQLColours light()
{
    KNSQLColours colours;
    colours.background = QColor(0xffffff);
    colours.text = QColor(0x1f2328);
    colours.keyword = QColor(0x0b4fb3);
    colours.function = QColor(0x7a3aa8);
    colours.type = QColor(0x1f6b2e);
    colours.string = QColor(0x8a4b00);
    colours.number = QColor(0x0a6b5c);
    colours.comment = QColor(0x5c6b5c);
    colours.variable = QColor(0x00627a);
    colours.quotedName = QColor(0x3d4a57);
    colours.error = QColor(0xc01c28);
    colours.lineNumber = QColor(0x6b7280);
    colours.margin = QColor(0xf5f6f7);
    colours.currentLine = QColor(0xf3f6fb);
    colours.selection = QColor(0xbfd7f5);
    colours.matchedBrace = QColor(0xcfe8cf);
    return colours;
}

KNSQLColours dark()
{
    KNSQLColours colours;
    colours.background = QColor(0x1e2024);
    colours.text = QColor(0xdfe2e7);
    colours.keyword = QColor(0x7fb0ff);
    colours.function = QColor(0xcfa3f2);
    colours.type = QColor(0x8fd694);
    colours.string = QColor(0xe8b376);
    colours.number = QColor(0x7fd6bf);
    colours.comment = QColor(0x8fa38f);
    colours.variable = QColor(0x7fd0e3);
    colours.quotedName = QColor(0xb9c6d3);
    colours.error = QColor(0xff7b72);
    colours.lineNumber = QColor(0x8b929c);
    colours.margin = QColor(0x26282d);
    colours.currentLine = QColor(0x282b31);
    colours.selection = QColor(0x344f73);
    colours.matchedBrace = QColor(0x3b5a3b);
    return colours;
}

} // namespace

KNSQLColours KNSQLColours::forPalette(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < 128 ? dark() : light();
}
