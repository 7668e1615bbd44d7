#include "kit/program/options.h"

#include "kit/suite/trial.h"

namespace kit
{

namespace
{

// Where the words are read to.
struct Reader {
    QStringList words;
    int next;
    QString error;

    QString value(const QString &option)
    {
        if (next < words.size())
            return words.at(next++);
        error = QString::fromLatin1("%1 needs a value").arg(option);
        return QString();
    }

    int number(const QString &option)
    {
        bool isNumber = false;
        const int found = value(option).toInt(&isNumber);
        if (error.isEmpty() && (!isNumber || found < 1))
            error = QString::fromLatin1("%1 needs a number above 0").arg(option);
        return found;
    }
};

void readOption(const QString &word, Reader &reader, Options &options)
{
    if (word == QLatin1String("--help") || word == QLatin1String("-h"))
        options.isHelp = true;
    else if (word == QLatin1String("--list"))
        options.isList = true;
    else if (word == QLatin1String("--here"))
        options.isHere = true;
    else if (word == QLatin1String("--transcript"))
        options.transcript = reader.value(word);
    else if (word == QLatin1String("--junit"))
        options.junit = reader.value(word);
    else if (word == QLatin1String("--project"))
        options.project = reader.value(word);
    else if (word == QLatin1String("--only"))
        options.only.append(reader.value(word));
    else if (word == QLatin1String("--commands"))
        options.commands = reader.number(word);
    else if (word == QLatin1String("--timeout"))
        options.timeout = reader.number(word);
    else
        reader.error = QString::fromLatin1("unknown option %1").arg(word);
}

} // namespace

Options::Options()
    : commands(Settings().commands), timeout(Settings().timeout), isHelp(false), isList(false), isHere(false)
{
}

Options parsedOptions(const QStringList &words, QString &error)
{
    Options options;
    Reader reader = {words, 0, QString()};
    while (reader.next < words.size() && reader.error.isEmpty()) {
        const QString &word = words.at(reader.next++);
        if (word.startsWith(QLatin1Char('-')))
            readOption(word, reader, options);
        else if (options.plugin.isEmpty())
            options.plugin = word;
        else
            reader.error = QString::fromLatin1("one plug-in is there already, what is %1?").arg(word);
    }
    if (reader.error.isEmpty() && options.plugin.isEmpty() && !options.isHelp && !options.isList)
        reader.error = QLatin1String("no plug-in");
    error = reader.error;
    return options;
}

QString helpText(const QString &program, bool needsTranscript)
{
    const Settings defaults;
    const QString transcript =
        needsTranscript ? QLatin1String("--transcript FILE") : QLatin1String("[--transcript FILE]");
    return QString::fromLatin1(
               "Usage: %1 [options] %2 PLUGIN\n\n"
               "Takes a communication driver through all that a driver owes its host.\n\n"
               "  --transcript FILE  requests and replies that were recorded, as by driverhost --record\n"
               "  --project FILE     run beside this project database, for drivers that look for one\n"
               "  --junit FILE       write JUnit's XML as well\n"
               "  --only CHECK       only this check, or those that fit a pattern with * and ?; may be "
               "repeated\n"
               "  --commands N       commands of the checks for what grows (default %3)\n"
               "  --timeout SECONDS  when a check is given up (default %4)\n"
               "  --here             every check in this process, for a debugger\n"
               "  --list             the checks, each with its reason\n\n"
               "Exit codes: 0 the driver passes, 1 it fails, 2 usage, 3 it cannot be tried.\n")
        .arg(program, transcript)
        .arg(defaults.commands)
        .arg(defaults.timeout);
}

} // namespace kit
