#include "command_line.h"

#include "exit_codes.h"
#include "messages.h"
#include "target.h"

#include <QRegularExpression>

#include <cstdio>

namespace
{

const QChar Minus(0x2212);
const int EnoughDigits = 10;

// "-5" is a value to write and no option.
QString withUnmistakableMinus(const QString &word)
{
    static const QRegularExpression negative(QStringLiteral("^-(?:\\.?\\d|inf|nan)"),
                                             QRegularExpression::CaseInsensitiveOption);
    return negative.match(word).hasMatch() ? Minus + word.mid(1) : word;
}

} // namespace

QString withPlainMinus(const QString &word)
{
    return word.startsWith(Minus) ? QLatin1Char('-') + word.mid(1) : word;
}

CommandLine::CommandLine(const Texts &texts) : m_texts(texts)
{
    m_parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")});
}

void CommandLine::addOptions(const QList<QCommandLineOption> &options)
{
    m_parser.addOptions(options);
    for (const QCommandLineOption &option : options)
        m_options += option.names();
}

bool CommandLine::isSet(const char *option) const
{
    return m_options.contains(QLatin1String(option)) && m_parser.isSet(QLatin1String(option));
}

std::optional<int> CommandLine::parse(const QStringList &arguments)
{
    QStringList words{QLatin1String(m_texts.name)};
    for (const QString &argument : arguments)
        words += withUnmistakableMinus(argument);
    const bool isGood = m_parser.parse(words);
    if (m_parser.isSet(QStringLiteral("help"))) {
        std::fputs(helpText().toLocal8Bit().constData(), stdout);
        return Success;
    }
    if (isGood)
        return std::nullopt;
    mistake(m_parser.errorText());
    return refuse();
}

int CommandLine::number(const char *option, int lowest, int highest)
{
    QString error;
    const std::optional<int> number = parseNumber(QStringLiteral("--") + QLatin1String(option),
                                                  withPlainMinus(text(option)), lowest, highest, error);
    if (!number)
        mistake(error);
    return number.value_or(lowest);
}

int CommandLine::milliseconds(const char *option, int lowest, int highest)
{
    const double thousand = 1000;
    bool isNumber = false;
    const double seconds = withPlainMinus(text(option)).toDouble(&isNumber);
    if (isNumber && seconds * thousand >= lowest && seconds * thousand <= highest)
        return static_cast<int>(seconds * thousand);
    mistake(QStringLiteral("--%1 \"%2\": expected seconds from %3 to %4")
                .arg(QLatin1String(option), withPlainMinus(text(option)), QString::number(lowest / thousand),
                     QString::number(highest / thousand, 'g', EnoughDigits)));
    return lowest;
}

int CommandLine::choice(const char *option, const QStringList &choices)
{
    const int index = choices.indexOf(text(option));
    if (index < 0)
        mistake(QStringLiteral("--%1 \"%2\": expected %3")
                    .arg(QLatin1String(option), text(option), choices.join(QStringLiteral(", "))));
    return qMax(index, 0);
}

QStringList CommandLine::words() const
{
    QStringList words;
    for (const QString &word : m_parser.positionalArguments())
        words += withPlainMinus(word);
    return words;
}

void CommandLine::mistake(const QString &text)
{
    if (m_mistake.isEmpty())
        m_mistake = text;
}

int CommandLine::refuse() const
{
    complain(m_mistake);
    tell(QStringLiteral("Try \"driverhost %1 --help\".").arg(QLatin1String(m_texts.name)));
    return UsageError;
}

QString CommandLine::helpText() const
{
    // The parser would begin with the program's path and knows no subcommands.
    const QString parsers = m_parser.helpText();
    const QString options = parsers.mid(parsers.indexOf(QLatin1String("Options:")));
    return QStringLiteral("Usage: driverhost %1 [options] %2\n\n%3\n\n%4\nExample:\n%5\n")
        .arg(QLatin1String(m_texts.name), QLatin1String(m_texts.arguments), QLatin1String(m_texts.summary),
             options, QLatin1String(m_texts.example));
}
