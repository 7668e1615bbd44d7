#pragma once

#include <vector>

/// What lies where the driver looks for its project.
enum class ProjectFile {
    Missing,
    Text,           ///< a file that is no database
    WithoutStation, ///< no default station for the link
    WithoutTags,    ///< no table of tags
    Complete,       ///< with the tags of usedAddresses()
};

/// All of them.
const std::vector<ProjectFile> &allProjectFiles();
const char *nameOf(ProjectFile file);

/// The addresses, zero-based, that a complete project uses of either bit area of stations 1 and 2: runs, gaps
/// and some that the slave does not have.
const std::vector<int> &usedAddresses();

/// Puts the file in place of whatever is there; one that the driver still holds open stays as it is.
void putProjectFile(ProjectFile file);
