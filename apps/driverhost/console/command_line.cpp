#include "apps/driverhost/console/command_line.h"

#include "apps/driverhost/console/exit_code.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/number_text.h"

#include <QRegularExpression>

namespace
{

const QChar Minus(0x2212);
const int SignificantDigits = 10;
const int HelpWidth = 79;

// "-5" is a value to write and no option.
QString withMinusOfNumber(const QString &word)
{
    static const QRegularExpression negative(QStringLiteral("^-(?:\\.?\\d|inf|nan)"),
                                             QRegularExpression::CaseInsensitiveOption);
    return negative.match(word).hasMatch() ? Minus + word.mid(1) : word;
}

QString withPlainMinus(const QString &word)
{
    return word.startsWith(Minus) ? QLatin1Char('-') + word.mid(1) : word;
}

// Lines as long as a terminal has at least, the options' own length. What is indented stays as it is.
QString wrapped(const QString &text, const QString &indentation = {})
{
    QStringList lines;
    bool isOpen = false;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const bool isFixed = line.isEmpty() || line.startsWith(QLatin1Char(' '));
        if (isFixed) {
            lines += line;
            isOpen = false;
            continue;
        }
        for (const QString &word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            if (isOpen && lines.last().size() + 1 + word.size() <= HelpWidth)
                lines.last() += QLatin1Char(' ') + word;
            else
                lines += (isOpen ? indentation : QString()) + word;
            isOpen = true;
        }
    }
    return lines.join(QLatin1Char('\n'));
}

} // namespace

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

void CommandLine::setDefaults(const std::map<QString, QString> &values, const QString &origin)
{
    m_defaults = values;
    m_defaultsOrigin = origin;
}

bool CommandLine::isGiven(const char *option) const
{
    return isSet(option) || m_defaults.count(QLatin1String(option)) > 0;
}

QString CommandLine::text(const char *option) const
{
    const QString name = QLatin1String(option);
    const auto value = m_defaults.find(name);
    if (!isSet(option) && value != m_defaults.end())
        return value->second;
    return m_options.contains(name) ? withPlainMinus(m_parser.value(name)) : QString();
}

QStringList CommandLine::texts(const char *option) const
{
    QStringList texts;
    for (const QString &text : m_parser.values(QLatin1String(option)))
        texts += withPlainMinus(text);
    return texts;
}

QString CommandLine::nameInErrors(const char *option) const
{
    const QString name = QLatin1String(option);
    return isSet(option) || !isGiven(option) ? QStringLiteral("--") + name
                                             : QStringLiteral("%1: %2").arg(m_defaultsOrigin, name);
}

void CommandLine::setImplied(const char *option, const QString &value)
{
    m_implied[QStringLiteral("--") + QLatin1String(option)] = value;
}

// What follows such an option is its value when it is a number.
QStringList CommandLine::withImplied(const QStringList &arguments) const
{
    QStringList words;
    for (int i = 0; i < arguments.size(); ++i) {
        const auto implied = m_implied.find(arguments.at(i));
        bool isNumber = false;
        arguments.value(i + 1).toDouble(&isNumber);
        words += implied == m_implied.end() || isNumber
                     ? arguments.at(i)
                     : arguments.at(i) + QLatin1Char('=') + implied->second;
    }
    return words;
}

void CommandLine::take(const QStringList &arguments)
{
    QStringList words{QLatin1String(m_texts.name)};
    for (const QString &argument : withImplied(arguments))
        words += withMinusOfNumber(argument);
    if (!m_parser.parse(words))
        addError(m_parser.errorText());
}

std::optional<int> CommandLine::parse(const QStringList &arguments)
{
    take(arguments);
    if (m_parser.isSet(QStringLiteral("help"))) {
        const QString command = QStringLiteral("driverhost ") + QLatin1String(m_texts.name);
        return print({helpText(command)}) ? Success : OutputClosed;
    }
    return isValid() ? std::nullopt : std::optional<int>(reportUsageError());
}

int CommandLine::number(const char *option, int min, int max)
{
    const Result<int> number = parseNumber(nameInErrors(option), text(option), min, max);
    if (!number)
        addError(number.errorText());
    return number.valueOr(min);
}

int CommandLine::milliseconds(const char *option, int min, int max)
{
    bool isNumber = false;
    const double seconds = text(option).toDouble(&isNumber);
    if (isNumber && seconds * 1000.0 >= min && seconds * 1000.0 <= max)
        return static_cast<int>(seconds * 1000.0);
    addError(QStringLiteral("--%1 \"%2\": expected seconds from %3 to %4")
                 .arg(QLatin1String(option), text(option), QString::number(min / 1000.0),
                      QString::number(max / 1000.0, 'g', SignificantDigits)));
    return min;
}

int CommandLine::choice(const char *option, const QStringList &choices)
{
    const int index = int(choices.indexOf(text(option)));
    if (index < 0)
        addError(QStringLiteral("--%1 \"%2\": expected %3")
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

void CommandLine::addError(const QString &text)
{
    if (m_error.isEmpty())
        m_error = text;
}

void CommandLine::expectWith(bool hasIt, const char *what, const QList<const char *> &options)
{
    for (const char *option : options) {
        if (!hasIt && isSet(option))
            addError(QStringLiteral("--%1 goes with %2").arg(QLatin1String(option), QLatin1String(what)));
    }
}

int CommandLine::reportUsageError() const
{
    reportError(m_error);
    report(QStringLiteral("Try \"driverhost %1 --help\".").arg(QLatin1String(m_texts.name)));
    return UsageError;
}

QString CommandLine::helpText(const QString &command) const
{
    // The parser would start with the program's path and knows no subcommands.
    const QString parsers = m_parser.helpText();
    const QString options = parsers.mid(parsers.indexOf(QLatin1String("Options:")));
    const QString usage =
        QStringLiteral("Usage: %1 [options] %2").arg(command, QLatin1String(m_texts.arguments));
    return QStringLiteral("%1\n\n%2\n\n%3\nExample:\n%4")
        .arg(wrapped(usage, QStringLiteral("       ")), wrapped(QLatin1String(m_texts.summary)), options,
             QLatin1String(m_texts.example));
}
