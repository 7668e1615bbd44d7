#include "tests/stateful/project_files.h"

#include "tests/doubles/project_database.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>

#include <map>

namespace
{

const char *const names[] = {"no file", "a text", "no station", "no tags", "a complete project"};

QStringList tags()
{
    QStringList all;
    for (const char *const prefix : {"1-DI", "1-DO", "2-DI", "2-DO"})
        for (const int address : usedAddresses())
            all << QLatin1String(prefix) + QString::number(address + 1);
    return all;
}

QByteArray currentContent()
{
    QFile file(ProjectDatabase::path());
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

QByteArray contentOf(ProjectFile file)
{
    if (file == ProjectFile::Text)
        return "no database";
    const ProjectDatabase project(tags(), 1);
    if (file == ProjectFile::WithoutStation)
        ProjectDatabase::execute(QLatin1String("DELETE FROM NODE"));
    if (file == ProjectFile::WithoutTags)
        ProjectDatabase::execute(QLatin1String("DROP TABLE custom_tag_table"));
    return currentContent();
}

// Made once, since a test puts thousands.
std::map<ProjectFile, QByteArray> allContents()
{
    std::map<ProjectFile, QByteArray> contents;
    for (const ProjectFile file : allProjectFiles())
        if (file != ProjectFile::Missing)
            contents[file] = contentOf(file);
    return contents;
}

} // namespace

const std::vector<ProjectFile> &allProjectFiles()
{
    static const std::vector<ProjectFile> all = {ProjectFile::Missing, ProjectFile::Text,
                                                 ProjectFile::WithoutStation, ProjectFile::WithoutTags,
                                                 ProjectFile::Complete};
    return all;
}

const char *nameOf(ProjectFile file)
{
    return names[static_cast<int>(file)];
}

const std::vector<int> &usedAddresses()
{
    static const std::vector<int> addresses = {0,  1,  2,  5,   7,   8,   9,   10,  11,    15,   16,
                                               17, 40, 41, 290, 297, 298, 299, 300, 65534, 65535};
    return addresses;
}

void putProjectFile(ProjectFile file)
{
    static const std::map<ProjectFile, QByteArray> contents = allContents();
    ProjectDatabase::makeFolders();
    QFile::remove(ProjectDatabase::path());
    const auto content = contents.find(file);
    if (content == contents.end())
        return;
    QFile target(ProjectDatabase::path());
    ASSERT_TRUE(target.open(QIODevice::WriteOnly));
    ASSERT_EQ(target.write(content->second), content->second.size());
}
