#pragma once

#include <QCommandLineParser>
#include <QStringList>

#include <map>
#include <optional>

/// The arguments of one subcommand: its options, what is wrong with them, and its help.
class CommandLine
{
public:
    struct Texts {
        const char *name;      ///< "read"
        const char *arguments; ///< "[TARGET] ADDRESS..."
        const char *summary;
        const char *example;
    };

    explicit CommandLine(const Texts &texts);

    void addOptions(const QList<QCommandLineOption> &options);

    /// The option's number may be left out, and is \a value then.
    void setImplied(const char *option, const QString &value);

    /// Takes the arguments after the subcommand's name. The exit code when the run ends with that: help was
    /// asked for, or an option is unknown.
    std::optional<int> parse(const QStringList &arguments);
    /// The same for who reports what is wrong: an unknown option is noted, and help is an option.
    void take(const QStringList &arguments);
    /// The help of the program that is called so: "driverhost read".
    QString helpText(const QString &command) const;

    /// Values of options that are not among the arguments, by their names; \a origin says in errors who set
    /// them. They count before the options' own defaults.
    void setDefaults(const std::map<QString, QString> &values, const QString &origin);

    /// Whether it is among the arguments; false also for an option that the subcommand does not have.
    bool isSet(const char *option) const;
    /// Whether it is among the arguments or the values set besides.
    bool isGiven(const char *option) const;
    /// Empty also for an option that the subcommand does not have.
    QString text(const char *option) const;
    QStringList texts(const char *option) const;
    /// The option's number; one outside the limits is an error and gives \a min.
    int number(const char *option, int min, int max);
    /// An option in seconds, "0.5", as milliseconds.
    int milliseconds(const char *option, int min, int max);
    /// Which of \a choices the option names; the first, and an error, when none.
    int choice(const char *option, const QStringList &choices);

    /// What is left when options are taken away.
    QStringList words() const;

    /// Notes that \a options make no sense without \a what, where \a hasIt is false and one of them is set.
    void expectWith(bool hasIt, const char *what, const QList<const char *> &options);
    /// Notes the first thing that is wrong; later ones are dropped.
    void addError(const QString &text);
    bool isValid() const { return m_error.isEmpty(); }
    /// The first thing that is wrong; empty when nothing is.
    const QString &errorText() const { return m_error; }
    /// Reports what is wrong; the exit code.
    int reportUsageError() const;

private:
    QString nameInErrors(const char *option) const;
    QStringList withImplied(const QStringList &arguments) const;

    Texts m_texts;
    QCommandLineParser m_parser;
    QStringList m_options;
    std::map<QString, QString> m_implied; // by "--" and the option
    std::map<QString, QString> m_defaults;
    QString m_defaultsOrigin;
    QString m_error;
};
