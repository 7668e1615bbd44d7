#pragma once

#include "desk/project/project_why.h"

#include <gtest/gtest.h>

/// Tests of what the report on a project database says that the driver will say: beside this program is a
/// database, for the driver to load as well.
class ProjectWhyTest : public testing::Test
{
protected:
    static const int PageSize = 512;

    ProjectWhyTest();
    ~ProjectWhyTest() override;

    static QString path();
    /// Removes the database, whatever it is, and what SQLite lays beside it.
    static void removeFiles();
    /// A new project that drivers load, after the \a first statements: one Ethernet link, station 1, tag DI1.
    static void makeProject(const QStringList &first = {});
    /// The same with hundreds of rows in every table, in small pages.
    static void makeProjectOfManyPages();
    static void run(const QStringList &statements);
    static QByteArray content();
    static void setContent(const QByteArray &content);

    /// The report on the database, compared with what a driver says when it loads the same. \a what names the
    /// state of the database in messages.
    static LoadReport comparedReport(const std::string &what,
                                     const QString &device = QStringLiteral("ETHERNET"));
};
