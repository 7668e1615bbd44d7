#pragma once

#include "desk/result.h"

#include <QStringList>

#include <vector>

/// A table of comma separated values as spreadsheets save it: separated by commas, semicolons or tabs,
/// whichever its first line has most of; cells in quotes where they hold separators or line breaks.
struct CsvTable {
    struct Row {
        int line = 0; ///< in the file, from 1
        QStringList cells;
    };

    QChar separator = QLatin1Char(',');
    std::vector<Row> rows; ///< without empty lines
};

/// The text of a file: UTF-8 or UTF-16 by its mark, UTF-8 without one, otherwise Latin-1.
QString decodedText(const QByteArray &bytes);

/// Takes the table apart; cells come without blanks around them. The error names the line.
Result<CsvTable> parseCsv(const QString &text);

/// A cell as it stands in a table: in quotes when it has to be.
QString csvCell(const QString &text);
