#include "apps/driverhost/console/target_choice.h"

#include "desk/items/target.h"

#include <algorithm>

namespace
{

Result<TargetChoice> namedTarget(const QString &name)
{
    const Result<TargetFile> file = TargetFile::read(TargetFile::defaultPath());
    if (!file)
        return file.error();
    const std::optional<TargetSettings> settings = file->find(name);
    if (settings)
        return TargetChoice{*settings, QStringLiteral("@%1 of %2").arg(name, file->path())};
    return Error{QStringLiteral("there is no target \"%1\" in %2; \"driverhost target\" lists them")
                     .arg(name, file->path())};
}

} // namespace

bool looksLikeTargetName(const QString &word)
{
    return word.startsWith(QLatin1Char('@'));
}

bool hasTarget(const QStringList &words)
{
    return std::any_of(words.begin(), words.end(), [](const QString &word) {
        return looksLikeTarget(word) || looksLikeTargetName(word);
    });
}

Result<TargetChoice> targetCalled(const QString &word)
{
    if (looksLikeTargetName(word))
        return namedTarget(word.mid(1));
    const Result<Target> target = parseTarget(word);
    if (!target)
        return target.error();
    return TargetChoice{{{QStringLiteral("host"), target->host},
                         {QStringLiteral("port"), QString::number(target->port)},
                         {QStringLiteral("station"), QString::number(target->station)}},
                        word};
}

Result<TargetChoice> chooseTarget(QStringList &words)
{
    QStringList targets;
    QStringList others;
    for (const QString &word : qAsConst(words))
        (looksLikeTarget(word) || looksLikeTargetName(word) ? targets : others) += word;
    words = others;
    if (targets.size() > 1)
        return Error{QStringLiteral("\"%1\": one target is there already").arg(targets.at(1))};
    if (!targets.isEmpty())
        return targetCalled(targets.front());
    const QString ofEnvironment = qEnvironmentVariable(TargetVariable);
    if (ofEnvironment.isEmpty())
        return TargetChoice();
    Result<TargetChoice> choice = targetCalled(ofEnvironment);
    if (!choice)
        return Error{QStringLiteral("%1 in the environment: %2")
                         .arg(QLatin1String(TargetVariable), choice.errorText())};
    choice->origin += QStringLiteral(", by %1 in the environment").arg(QLatin1String(TargetVariable));
    return choice;
}
