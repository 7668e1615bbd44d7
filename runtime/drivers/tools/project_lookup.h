#pragma once

#include <QDir>
#include <QList>
#include <QString>

/// \file
/// Where the compiled project lies, and which link and station of it a channel serves.

/// Names of the folders below the application's directory that lead to the project database.
/// @{
extern const QString COMPILE_PATH;
extern const QString DATABASE_PATH;
/// @}

/// A link of the project and the default station on it.
struct LinkIdStationId {
    int linkId;              ///< Key of the table LINK.
    unsigned char stationId; ///< Low 8 bits of the station that the project has.
};

/// The application's directory, or its subdirectory "compile" when it has one.
QDir GetCompilePath();
/// The absolute path of the project database: the file "database" in the subdirectory "database" of
/// GetCompilePath(), or in GetCompilePath() itself when that has no such subdirectory. The file need not
/// exist.
QString GetDatabaseName();

/// The HMI port number of a device name: 2000 for a name that begins with "ETHERNET" in any case, otherwise
/// the digits at its end plus 999 (COM1 gives 1000). A name without such digits, or of digits only, stops the
/// process.
int DevStrToHmiPort(const QString &dev_str);

/// \name Lookups
/// Each runs one query on the named database connection, which it opens when it is closed. Stations are
/// truncated to 8 bits.
/// @{

/// The first link on \a hmiPort with a default node, and that node's station. False, with the outputs
/// untouched, when there is none or the query fails.
bool GetLinkIdAndDefaultStationId(const QString &connectionName, int hmiPort, int &linkId,
                                  unsigned char &stationId);
/// Appends every link on \a hmiPort whose default node has the endpoint \a ip and \a port; the texts go into
/// the query as they stand. Returns whether \a result has any entry afterwards, those that it came with
/// included.
bool GetLinkIdAndDefaultStationId(const QString &connectionName, int hmiPort, const QString &ip,
                                  unsigned short port, QList<LinkIdStationId> &result);
/// Appends every default node of the link. Returns whether \a result has any entry afterwards, those that it
/// came with included.
bool GetLinkIdAndDefaultStationId(const QString &connectionName, int linkId, QList<LinkIdStationId> &result);

/// @}
