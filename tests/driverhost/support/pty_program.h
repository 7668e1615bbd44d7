#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <sys/types.h>

/// What a terminal shows after some output: lines of text, without colours. It knows the other screen that
/// programs take for themselves.
class Screen
{
public:
    void feed(const QString &output);
    QStringList lines() const { return m_lines; }
    QString text() const { return m_lines.join(QLatin1Char('\n')); }
    bool isCursorShown() const { return m_isCursorShown; }

private:
    void put(QChar character);
    void control(const QString &parameters, QChar command);
    void setMode(const QString &mode, bool isOn);

    QStringList m_lines{QString()};
    int m_row = 0;
    int m_column = 0;
    bool m_isCursorShown = true;
    QStringList m_otherLines;
    int m_otherRow = 0;
    QString m_sequence; // an escape sequence that is not complete yet
};

/// driverhost on a terminal of its own.
class PtyProgram
{
public:
    /// Standard error goes to \a errorFile where one is named.
    PtyProgram(const QStringList &arguments, int columns = 100, int rows = 30,
               const QByteArray &locale = "C.UTF-8", const QString &errorFile = {});
    ~PtyProgram();
    PtyProgram(const PtyProgram &) = delete;
    PtyProgram &operator=(const PtyProgram &) = delete;

    /// Takes output until the screen fulfils the condition; false when that takes too long or the program
    /// ends.
    bool waitForScreen(const std::function<bool(const Screen &)> &condition);
    /// Types, "\x03" for Ctrl-C.
    void type(const QByteArray &keys);
    /// Gives the terminal another size, as a window does.
    void resize(int columns, int rows);
    /// Takes the rest of the output; the exit code, 128 + signal after a signal, -1 when it does not end.
    int waitForEnd();

    const Screen &screen() const { return m_screen; }
    /// Everything that came, as it came.
    const QString &output() const { return m_output; }

private:
    bool takeOutput(int milliseconds);

    pid_t m_pid = -1;
    int m_terminal = -1;
    Screen m_screen;
    QString m_output;
    QByteArray m_pending; // bytes of a character that is not complete yet
};
