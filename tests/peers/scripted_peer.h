#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <thread>

/// A slave's end of one connection, that does byte for byte what a test says.
class ScriptedPeer
{
public:
    using Script = std::function<void(ScriptedPeer &)>;

    /// Listens at once; \a script runs in a thread of its own when a master has connected. The connection is
    /// closed when it ends.
    explicit ScriptedPeer(Script script);
    /// Waits for the end of the script, which every failed send or receive brings nearer.
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer &) = delete;
    ScriptedPeer &operator=(const ScriptedPeer &) = delete;

    quint16 port() const { return listenPort; }

    /// For the script: the next \a size bytes; fewer when the connection ends.
    QByteArray receive(int size);
    void send(const QByteArray &bytes);
    /// Cuts the connection off.
    void reset();

private:
    int listener = -1;
    int connection = -1;
    quint16 listenPort = 0;
    std::thread thread;
};
