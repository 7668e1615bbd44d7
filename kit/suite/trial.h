#pragma once

#include "kit/plugin/plugin.h"
#include "kit/subject/subject.h"
#include "kit/suite/verdict.h"

namespace kit
{

struct Transcript;

/// What a run of the suite is about.
struct Settings {
    QString plugin;
    /// How many commands the checks send that look for what grows.
    int commands;
    /// After how many seconds a check is given up.
    int timeout;
    /// What the driver has to send byte for byte; null: nothing was recorded.
    const Transcript *transcript;

    Settings() : commands(1000000), timeout(600), transcript(nullptr) {}
};

/// One check at work: what it works on, and what it found.
class Trial
{
public:
    Trial(const QString &check, const Settings &settings, Subject &subject);
    Trial(const Trial &) = delete;
    Trial &operator=(const Trial &) = delete;

    Subject &subject() { return m_subject; }
    /// The driver's file. Not before it is asked for: Qt 4.8 cannot load a file again while a loader of it is
    /// left.
    Plugin &plugin();
    const Settings &settings() const { return m_settings; }

    /// The driver of Qt's loader. Without one the check is skipped, and this is null.
    DriverInterface *driver();

    void report(const Finding &finding);
    /// Reports what has no command and no frames.
    void report(const QString &expected, const QString &happened);
    /// There is nothing to check. What was reported before counts all the same.
    void skip(const QString &reason);
    bool isSkipped() const { return !m_verdict.skipped.isEmpty(); }

    /// What all that makes.
    Verdict verdict() const;

private:
    bool isDeclared(const Finding &finding);
    QStringList unseen() const;

    QString m_check;
    const Settings &m_settings;
    Subject &m_subject;
    std::unique_ptr<Plugin> m_plugin;
    Differences m_differences; // of this check
    std::vector<bool> m_seen;
    Verdict m_verdict;
};

} // namespace kit
