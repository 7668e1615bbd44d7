#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace kit
{

/// What the checks read of a plug-in file of this machine's kind, without loading it.
class ElfFile
{
public:
    /// Not valid when \a file cannot be read or is no such file.
    explicit ElfFile(const QString &file);

    bool isValid() const;

    /// A name that the file shows to others.
    struct Symbol {
        QByteArray name;
        bool isWeak;
    };
    /// Those that it defines.
    QList<Symbol> exported() const;
    /// The bytes of a section; empty when there is none of that name.
    QByteArray section(const char *name) const;

private:
    QByteArray m_bytes;
};

} // namespace kit
