#include "desk/doctor/remedy.h"

#include "desk/doctor/observing/wanted_value.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

namespace
{

const size_t MostAddresses = 8;

template <typename T>
void take(std::optional<T> &value, const std::optional<T> &other)
{
    if (other)
        value = other;
}

// As it would be written, with what the remedy says of it.
QString addressText(const Wanted &wanted, const Remedy &remedy)
{
    const TypedItems &at = wanted.point.at;
    Address address = at.address;
    address.number = std::clamp(address.number + remedy.shift, 1, modbus::AddressSpace);
    address.station = -1;
    address.highWordFirst = false;
    if (remedy.area)
        address.areaName = lettersOf(*remedy.area);
    QString text = address.text();
    if (at.type.isBit())
        return text;
    const bool isWide = at.type.registers() > 1 && !at.type.isText();
    const bool isTyped = at.isTyped || !remedy.order.isEmpty();
    const bool isWord = at.type == ValueType{Meaning::Unsigned, modbus::RegisterBits};
    if ((isTyped && !isWord) || isWide)
        text += QLatin1Char(':') + nameOf(at.type);
    const QString ownOrder = at.order == defaultOrder(at.type) ? QString() : nameOf(at.order, at.type);
    const bool isTouched = remedy.order.size() == nameOf(at.order, at.type).size();
    const QString order = isTouched ? remedy.order : ownOrder;
    return order.isEmpty() || at.address.isBitArea() ? text : text + QLatin1Char('@') + order;
}

// Where nothing was wanted, what was seen.
QString seenAddress(const Observations &seen)
{
    const Asked *read = seen.firstRead();
    if (read == nullptr)
        return QStringLiteral("HR1");
    return lettersOf(areaOfFunction(read->function())) + QString::number(wordAt(read->request, 2) + 1);
}

// Whether the place of a wanted value was refused.
bool isRefused(const Wanted &wanted, const Observations &seen)
{
    const QByteArray request = requestFor(seen.working, wanted);
    return std::any_of(seen.asked.begin(), seen.asked.end(), [&](const Asked &one) {
        return one.request == request && one.result == AskResult::Refused;
    });
}

QStringList addresses(const DoctorOptions &options, const Remedy &remedy, const Observations &seen)
{
    QStringList texts;
    for (const Wanted &wanted : options.wanted) {
        const bool isReadable = remedy.shift != 0 || remedy.area || !isRefused(wanted, seen);
        if (isReadable && texts.size() < static_cast<int>(MostAddresses))
            texts += addressText(wanted, remedy);
    }
    return texts.isEmpty() ? QStringList(seenAddress(seen)) : texts;
}

} // namespace

void add(Remedy &remedy, const Remedy &other)
{
    take(remedy.station, other.station);
    take(remedy.timeout, other.timeout);
    take(remedy.delay, other.delay);
    if (other.retries)
        remedy.retries = std::max(remedy.retries.value_or(0), *other.retries);
    if (other.shift != 0)
        remedy.shift = other.shift;
    if (!other.order.isEmpty())
        remedy.order = other.order;
    take(remedy.area, other.area);
    remedy.worksNow = remedy.worksNow && other.worksNow;
}

QStringList commandFor(const DoctorOptions &options, const Remedy &remedy, const Observations &seen)
{
    const ExchangeSettings defaults;
    Target target = options.target;
    target.station = remedy.station.value_or(target.station);
    QStringList words{QStringLiteral("driverhost"), QStringLiteral("read"), targetText(target)};
    words += addresses(options, remedy, seen);
    const auto addNumber = [&](const char *option, int number, int byDefault) {
        if (number != byDefault)
            words += {QLatin1String(option), QString::number(number)};
    };
    addNumber("--timeout", remedy.timeout.value_or(options.exchange.timeout), defaults.timeout);
    addNumber("--delay", remedy.delay.value_or(int(options.exchange.delay)), int(defaults.delay));
    addNumber("--retries", remedy.retries.value_or(options.exchange.retries), defaults.retries);
    return words + options.moreOptions;
}

QString shellWord(const QString &word)
{
    const auto isPlain = [](QChar letter) {
        return letter.isLetterOrNumber() || QStringLiteral("_-./:@%+=,").contains(letter);
    };
    if (!word.isEmpty() && std::all_of(word.begin(), word.end(), isPlain))
        return word;
    return QLatin1Char('\'') + QString(word).replace(QLatin1Char('\''), QLatin1String("'\\''")) +
           QLatin1Char('\'');
}
