#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// A frame to be sent, put together from sections that can be read back by number: a station, a command, a
/// text, a check.
///
///     TxPackage frame;
///     frame.appendByte(0x01);
///     frame.appendWord(0x0203);
///     frame.appendByte2Ascii(0x0A);   // 01 03 02 30 41, sections of 1, 2 and 2 bytes
///
/// Sections are numbered from 0. The stored size of a section is its number of bytes, or -k when the first
/// byte of section k holds that number (k > 0; see setSectionSize()).
class TxPackage
{
public:
    /// Appends \a bytes as one section. Like all that append, it answers true.
    bool appendSection(const QByteArray &bytes);
    /// Appends a section of 1 byte.
    bool appendByte(unsigned char value);
    /// Appends a section of 2 bytes, little-endian.
    bool appendWord(unsigned short value);
    /// Appends a section of 4 bytes, little-endian.
    bool appendDWord(unsigned int value);
    /// Appends \a text as Latin-1, one byte a character.
    bool appendString(const QString &text);
    /// Appends the two upper-case hexadecimal digits of \a value.
    bool appendByte2Ascii(unsigned char value);
    /// Appends the sum of all bytes so far modulo 256 as a section of 1 byte. It is the plain sum, not its
    /// two's complement.
    bool appendLRCByte();
    /// Appends that sum as two upper-case hexadecimal digits.
    bool appendLRCAscii();
    /// Appends the exclusive-or of all bytes so far as two upper-case hexadecimal digits, whatever the
    /// argument.
    bool appendFCSAscii(int /*unused*/);
    /// The exclusive-or of the bytes of \a package without the last \a excludeTail; of all of them when
    /// \a excludeTail is negative.
    static int calculateFCS(const TxPackage *package, int excludeTail);

    /// Replaces the bytes of the frame; the sections stay as they are. Answers true.
    bool setData(const QByteArray &bytes);
    /// The same with \a length bytes; with none when \a length is negative.
    bool setData(const char *bytes, int length);
    /// Replaces the stored sizes of the sections, and cuts the frame to their sum as they stand, negative
    /// ones included, or fills it up to it with zero bytes. A sum that is negative or that no int holds
    /// counts as 0.
    ///
    /// With 1, 1, -1 section 2 is as long as the first byte of section 1 says: of 01 03 41 42 43 it is
    /// 41 42 43. A section whose size comes from itself, through however many others, or from a section that
    /// there is not, has no bytes.
    void setSectionSize(const QList<int> &sizes);
    /// Back to no bytes and no sections.
    void clearAll();

    /// The bytes of the frame, totalSize() of them, to be changed in place. Valid until the next change.
    char *data();
    /// A copy of the frame.
    QByteArray byteArrayData() const;
    /// The number of bytes in the frame.
    int totalSize() const;

    /// The number of sections.
    int numberOfSections() const;
    /// Whether there is a section \a i.
    bool validSectionNumber(int i) const;
    /// The sum of the stored sizes before section \a i, negative ones as they stand; -1 when there is no such
    /// section.
    int sectionStartIndex(int i) const;
    /// The number of bytes that section \a i is to have; 0 when there is no such section.
    int sectionSize(int i) const;
    /// sectionSize() bytes from sectionStartIndex() on, or as many of them as the frame has; none when there
    /// is no such section.
    QByteArray dataAt(int i) const;
    /// The first byte as a number from 0 to 255; 0 for an empty array.
    static int arrayToInt(const QByteArray &bytes);

    /// The frame as dumpByteArray() shows it.
    QString toString() const;

private:
    int sectionThatSizes(int i) const;
    QByteArray bytesFrom(int start, int size) const;

    QByteArray buffer;
    QList<int> sectionSizes;
};
