#pragma once

#include <QModelIndexList>
#include <QString>

/// The texts of cells as a table to be pasted: a line each row, with tabs between.
QString copiedText(QModelIndexList cells);
