#pragma once

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

/// The window's program in an X server of its own, used as a person does: with keys, and by looking.
class XScreen
{
public:
    /// Starts Xvfb and a window manager; \a size: "1280x800".
    explicit XScreen(const QString &size);
    ~XScreen();
    XScreen(const XScreen &) = delete;
    XScreen &operator=(const XScreen &) = delete;

    bool isReady() const { return !m_display.isEmpty(); }
    /// Starts the program, and waits until its window is there. False when none comes.
    bool start(const QStringList &arguments);
    bool isRunning() const { return m_program.state() == QProcess::Running; }
    /// Whether the program ends within so many milliseconds.
    bool ends(int milliseconds) { return !isRunning() || m_program.waitForFinished(milliseconds); }
    int exitCode() const { return m_program.exitCode(); }
    QByteArray output() { return m_program.readAll(); }

    /// Whether a window of which the title has this text gets the keys, at last.
    bool comesToFront(const QString &title);
    /// Keys as xdotool names them, "ctrl+1", and texts.
    void press(const QStringList &keys);
    void type(const QString &text);
    /// What the program has put into the clipboard.
    QString clipboard();
    /// The table that has the focus, as a person copies it.
    QString copiedTable();
    /// What is on the screen.
    QImage picture();

private:
    QByteArray run(const QString &program, const QStringList &arguments);
    QProcessEnvironment environment() const;

    QTemporaryDir m_home;
    QProcess m_server;
    QProcess m_manager;
    QProcess m_program;
    QString m_display;
};
