#include "kit/plugin/elf_file.h"

#include <QFile>

#include <cstring>
#include <elf.h>
#include <link.h>

namespace kit
{

namespace
{

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);
using DynamicSymbol = ElfW(Sym);

// A record at \a offset of the file; zeros where the file ends before it.
template <typename Record>
Record recordAt(const QByteArray &bytes, quint64 offset)
{
    Record record = Record();
    if (offset + sizeof record <= static_cast<quint64>(bytes.size()))
        std::memcpy(&record, bytes.constData() + offset, sizeof record);
    return record;
}

QByteArray slice(const QByteArray &bytes, quint64 offset, quint64 size)
{
    const auto all = static_cast<quint64>(bytes.size());
    if (offset > all || size > all - offset)
        return QByteArray();
    return bytes.mid(static_cast<int>(offset), static_cast<int>(size));
}

// A text of a table of texts.
QByteArray textAt(const QByteArray &table, quint64 offset)
{
    if (offset >= static_cast<quint64>(table.size()))
        return QByteArray();
    return QByteArray(table.constData() + offset);
}

Section sectionAt(const QByteArray &bytes, unsigned int index)
{
    const Header header = recordAt<Header>(bytes, 0);
    if (index >= header.e_shnum)
        return Section();
    return recordAt<Section>(bytes, header.e_shoff + quint64(index) * header.e_shentsize);
}

QByteArray bytesOf(const QByteArray &bytes, const Section &section)
{
    return section.sh_type == SHT_NOBITS ? QByteArray() : slice(bytes, section.sh_offset, section.sh_size);
}

QList<ElfFile::Symbol> exportedOf(const QByteArray &table, const QByteArray &names)
{
    QList<ElfFile::Symbol> exported;
    for (quint64 at = 0; at + sizeof(DynamicSymbol) <= static_cast<quint64>(table.size());
         at += sizeof(DynamicSymbol)) {
        const auto symbol = recordAt<DynamicSymbol>(table, at);
        // The fields have the same place in symbols of both word sizes.
        const int binding = ELF32_ST_BIND(symbol.st_info);
        const int visibility = ELF32_ST_VISIBILITY(symbol.st_other);
        if (symbol.st_shndx == SHN_UNDEF || binding == STB_LOCAL || visibility != STV_DEFAULT)
            continue;
        const ElfFile::Symbol found = {textAt(names, symbol.st_name), binding == STB_WEAK};
        exported.append(found);
    }
    return exported;
}

} // namespace

ElfFile::ElfFile(const QString &file)
{
    QFile source(file);
    if (source.open(QIODevice::ReadOnly))
        m_bytes = source.readAll();
}

bool ElfFile::isValid() const
{
    const Header own = recordAt<Header>(m_bytes, 0);
    const unsigned char wordSize = sizeof(void *) == 8 ? ELFCLASS64 : ELFCLASS32;
    return std::memcmp(own.e_ident, ELFMAG, SELFMAG) == 0 && own.e_ident[EI_CLASS] == wordSize;
}

QList<ElfFile::Symbol> ElfFile::exported() const
{
    const Header header = recordAt<Header>(m_bytes, 0);
    for (unsigned int i = 0; i < header.e_shnum; ++i) {
        const Section section = sectionAt(m_bytes, i);
        if (section.sh_type == SHT_DYNSYM)
            return exportedOf(bytesOf(m_bytes, section),
                              bytesOf(m_bytes, sectionAt(m_bytes, section.sh_link)));
    }
    return QList<Symbol>();
}

QByteArray ElfFile::section(const char *name) const
{
    const Header header = recordAt<Header>(m_bytes, 0);
    const QByteArray names = bytesOf(m_bytes, sectionAt(m_bytes, header.e_shstrndx));
    for (unsigned int i = 0; i < header.e_shnum; ++i) {
        const Section section = sectionAt(m_bytes, i);
        if (textAt(names, section.sh_name) == name)
            return bytesOf(m_bytes, section);
    }
    return QByteArray();
}

} // namespace kit
