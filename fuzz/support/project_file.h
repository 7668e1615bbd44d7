#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The project database beside the fuzz program, where the driver looks for it.
namespace fuzz
{

/// The link that the project files below have, and its default station.
const int ProjectStation = 1;

QString projectPath();
/// Makes a new project: one link on COM1 and these tags.
void writeProject(const QStringList &tags);
/// Replaces the tags of the project that writeProject() made last.
void replaceTags(const QStringList &tags);
/// Puts any bytes in its place.
void writeProjectBytes(const QByteArray &bytes);
/// Forgets the database connections of driver objects that are gone.
void forgetDriverConnections();

} // namespace fuzz
