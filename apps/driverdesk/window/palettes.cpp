#include "apps/driverdesk/window/palettes.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOptionButton>

namespace
{

QPalette darkPalette()
{
    QPalette palette(QColor(0x3a, 0x3f, 0x44), QColor(0x2b, 0x2f, 0x33));
    palette.setColor(QPalette::Base, QColor(0x1f, 0x22, 0x25));
    palette.setColor(QPalette::AlternateBase, QColor(0x27, 0x2b, 0x2f));
    palette.setColor(QPalette::ToolTipBase, QColor(0x4a, 0x44, 0x2c));
    palette.setColor(QPalette::ToolTipText, QColor(0xf2, 0xee, 0xdc));
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x7f, 0xb8, 0xe6));
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(role, QColor(0xe6, 0xe8, 0xea));
        palette.setColor(QPalette::Disabled, role, QColor(0x9a, 0xa0, 0xa6));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0xa0, 0xa6));
    return palette;
}

// Styles give an empty check box an outline darker than the window, which nobody sees in a dark one.
class OutlinedStyle : public QProxyStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override
    {
        const auto *box =
            element == PE_IndicatorCheckBox ? qstyleoption_cast<const QStyleOptionButton *>(option) : nullptr;
        if (box == nullptr || box->palette.color(QPalette::Window).lightness() > 127)
            return QProxyStyle::drawPrimitive(element, option, painter, widget);
        QStyleOptionButton outlined = *box;
        outlined.palette.setColor(QPalette::Window, box->palette.color(QPalette::Text));
        QProxyStyle::drawPrimitive(element, &outlined, painter, widget);
    }
};

} // namespace

QStyle *newStyle()
{
    return new OutlinedStyle;
}

void applyPalette(bool isDark)
{
    static const QPalette atBeginning = QApplication::palette();
    QApplication::setPalette(isDark ? darkPalette() : atBeginning);
}
