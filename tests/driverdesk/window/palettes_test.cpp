#include "apps/driverdesk/window/palettes.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QImage>

#include <algorithm>

namespace
{

int lightestOf(QWidget &widget)
{
    const QImage picture = widget.grab().toImage();
    int lightest = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            lightest = std::max(lightest, picture.pixelColor(x, y).lightness());
    }
    return lightest;
}

} // namespace

TEST(Palettes, ShowAnEmptyCheckBoxInTheDark)
{
    QApplication::setStyle(QStringLiteral("fusion"));
    applyPalette(true);
    QCheckBox box;
    const int background = box.palette().color(QPalette::Window).lightness();
    EXPECT_LT(lightestOf(box), background + 60) << "without the style";
    QApplication::setStyle(newStyle());
    EXPECT_GT(lightestOf(box), background + 60);
    applyPalette(false);
}
