#pragma once

#include "drivers/address_marks.h"
#include "drivers/modbus_bit_set.h"

#include <QMap>
#include <QString>

#include <memory>
#include <vector>

/// Collects the coils and discrete inputs that the tags of a project use, by station.
class UsedBits
{
public:
    /// Tags without a station are of \a stationOfLink.
    explicit UsedBits(unsigned char stationOfLink);

    /// Adds the bit that the address text of a tag names: "DI5", "DO5" or "FN5DO5" of the link's station,
    /// "2-DO5" of station 2, in any case. Registers, and texts that are no address, are left out.
    ///
    /// Without a station the number must reach to the end of the text and counts as 0 when it does not; with
    /// one, nothing after the number is looked at.
    void add(const QString &text);

    /// The sets of all stations that have any, sorted.
    QMap<unsigned char, ModbusBitSet> sortedByStation() const;

private:
    void addByRules(const QString &text);
    void addWithStation(const QString &text);
    void validBitAddressesMapInsertDI(unsigned char station, unsigned short address);
    void validBitAddressesMapInsertDO(unsigned char station, unsigned short address);

    /// Nothing is kept of an area without used bits.
    struct Station {
        std::unique_ptr<AddressMarks> inputs;
        std::unique_ptr<AddressMarks> coils;
    };

    unsigned char defaultStation;
    /// One for each station there can be, at its number: a search in a map would cost more than the rest of a
    /// tag.
    std::vector<Station> stations;
};
