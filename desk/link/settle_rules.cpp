#include "desk/link/settle_rules.h"

#include "desk/wire/protocol.h"

#include <QRegularExpression>
#include <QStringList>

#include <map>

namespace
{

const int MaxQuietTime = 3600 * 1000;

Error expectation(const QString &part)
{
    return Error{
        QStringLiteral("\"%1\": expected auto, echo, quiet, quiet:MS with up to %2 ms, or off, or one "
                       "of them for a station, as in 7=off")
            .arg(part, QString::number(MaxQuietTime))};
}

Result<SettleRule> ruleIn(const QString &mode, const QString &quietTime)
{
    static const std::map<QString, SettleMode> modes{{QStringLiteral("auto"), SettleMode::Auto},
                                                     {QStringLiteral("echo"), SettleMode::Echo},
                                                     {QStringLiteral("quiet"), SettleMode::Quiet},
                                                     {QStringLiteral("off"), SettleMode::Off}};
    const auto found = modes.find(mode);
    const int time = quietTime.isEmpty() ? 0 : quietTime.toInt();
    const bool mayHaveTime = found != modes.end() && found->second == SettleMode::Quiet;
    const bool isTimeGood = quietTime.isEmpty() || (mayHaveTime && time >= 1 && time <= MaxQuietTime);
    if (found == modes.end() || !isTimeGood)
        return Error{};
    SettleRule rule;
    rule.mode = found->second;
    rule.quietTime = time;
    return rule;
}

} // namespace

Result<> applySettleRules(const QString &text, ExchangeSettings &settings)
{
    static const QRegularExpression pattern(QStringLiteral("^(?:(\\d{1,3})=)?([a-z]+)(?::(\\d{1,7}))?$"));
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString &part : parts) {
        const QRegularExpressionMatch match = pattern.match(part.trimmed());
        const Result<SettleRule> rule = ruleIn(match.captured(2), match.captured(3));
        const int station = match.captured(1).toInt();
        if (!rule || station > modbus::MaxStationNumber)
            return expectation(part.trimmed());
        if (match.captured(1).isEmpty())
            settings.settle = *rule;
        else
            settings.stationSettle[station] = *rule;
    }
    return {};
}
