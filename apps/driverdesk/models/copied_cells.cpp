#include "apps/driverdesk/models/copied_cells.h"

#include <algorithm>

QString copiedText(QModelIndexList cells)
{
    std::sort(cells.begin(), cells.end());
    QString text;
    for (int i = 0; i < cells.size(); ++i) {
        if (i > 0)
            text += cells.at(i).row() == cells.at(i - 1).row() ? QLatin1Char('\t') : QLatin1Char('\n');
        text += cells.at(i).data(Qt::DisplayRole).toString();
    }
    return text;
}
