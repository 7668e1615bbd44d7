#pragma once

/// \file
/// What differs between the Qt lines that the drivers build on, 4.8 and 5.15, dealt with here so that the
/// code that uses it need not ask which one it is.

#include <QDataStream>
#include <QDebug>
#include <QList>
#include <QObject>
#include <QtGlobal>
#include <QtPlugin>

#if QT_VERSION < 0x050000

// Qt 4 exports the plug-in from a source file and makes its verification text from the Qt that it is built
// on.
#define Q_PLUGIN_METADATA(iid)
#define DRIVER_EXPORT_PLUGIN(name, className) Q_EXPORT_PLUGIN2(name, className)

#else

/// Exports \a className, which has Q_PLUGIN_METADATA in it, as the Qt plug-in \a name. Stands once in a
/// source file of the plug-in.

// Qt 5 exports the plug-in from its class. The loader of a Qt 4.8.6 panel asks for this text as well, and
// looks for it in this section of the file before it loads anything.
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

/// The next number of the thread's sequence, which the host starts with qsrand(). Its successors know nothing
/// of qsrand() and do not exist in Qt 4.
inline int nextRandomNumber()
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    return qrand();
#pragma GCC diagnostic pop
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
