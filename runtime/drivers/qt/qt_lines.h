#pragma once

/// \file
/// What differs between the Qt lines that the drivers build on, 4.8, 5.15 and 6, dealt with here so that the
/// code that uses it need not ask which one it is. Lies below everything else.

#include <QDataStream>
#include <QDebug>
#include <QList>
#include <QObject>
#include <QtGlobal>
#include <QtPlugin>

#if QT_VERSION >= 0x060000
#include <QRandomGenerator>
#endif

#include <limits>

#if QT_VERSION < 0x050000

// Qt 4 exports the plug-in from a source file and makes its verification text from the Qt that it is built
// on.
#define Q_PLUGIN_METADATA(iid)
#define DRIVER_EXPORT_PLUGIN(name, className) Q_EXPORT_PLUGIN2(name, className)

#else

/// Exports \a className, which has Q_PLUGIN_METADATA in it, as the Qt plug-in \a name. Stands once in a
/// source file of the plug-in.

// From Qt 5 on the plug-in is exported from its class. The loader of a Qt 4.8.6 panel asks for this text as
// well, and looks for it in this section of the file before it loads anything.
#define DRIVER_EXPORT_PLUGIN(name, className)                                                                \
    __attribute__((section(".qtplugin"), used)) static const char qt_plugin_verification_data[] =            \
        "pattern=QT_PLUGIN_VERIFICATION_DATA\n"                                                              \
        "version=4.8.6\n"                                                                                    \
        "debug=false\n"                                                                                      \
        "buildkey=arm linux g++-4 no-pkg-config";                                                            \
    extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data();                                \
    extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data()                                 \
    {                                                                                                        \
        return qt_plugin_verification_data;                                                                  \
    }

#endif

#if QT_VERSION < 0x060000

// The deprecated functions have successors that do not exist in Qt 4, and know nothing of qsrand().
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

const bool CanSeedRandomNumbers = true;

inline int nextRandomNumber()
{
    return qrand();
}

inline void seedRandomNumbers(uint seed)
{
    qsrand(seed);
}

#pragma GCC diagnostic pop

#else

/// Whether each thread has a sequence of random numbers of its own, which starts the same in all of them
/// until it is seeded. Qt 6 has one that is different each time.
const bool CanSeedRandomNumbers = false;

/// The next number, of 31 bits.
inline int nextRandomNumber()
{
    return QRandomGenerator::global()->bounded(std::numeric_limits<int>::max());
}

/// Starts the thread's sequence anew, where there is one.
inline void seedRandomNumbers(uint /*seed*/) {}

#endif

/// The size of a Qt container. Qt 6 counts in 64 bits; no more than an int holds is ever looked at.
template <typename Container>
int sizeOf(const Container &container)
{
    return static_cast<int>(qMin<qint64>(container.size(), std::numeric_limits<int>::max()));
}

/// The number within what an int holds.
inline int boundedInt(qint64 value)
{
    return static_cast<int>(
        qBound(qint64(std::numeric_limits<int>::min()), value, qint64(std::numeric_limits<int>::max())));
}

/// Reads a list as Qt reads one, but without making room first for as many items as the stream announces: a
/// damaged one announces any number.
template <typename T>
void readItemByItem(QDataStream &stream, QList<T> &list)
{
#if QT_VERSION < 0x050000
    list.clear();
    quint32 announced = 0;
    stream >> announced;
    for (quint32 i = 0; i < announced; ++i) {
        T item;
        stream >> item;
        list.append(item);
        if (stream.atEnd())
            break;
    }
#else
    QtPrivate::readListBasedContainer(stream, list);
#endif
}

/// The debug output, to which quoted() texts go as they are.
/// @{
inline QDebug plainDebug()
{
#if QT_VERSION < 0x050000
    return qDebug();
#else
    return qDebug().noquote();
#endif
}

/// \a text between quotes. Qt 4 puts them around every text.
inline QString quoted(const QString &text)
{
#if QT_VERSION < 0x050000
    return text;
#else
    return QLatin1Char('"') + text + QLatin1Char('"');
#endif
}
/// @}
