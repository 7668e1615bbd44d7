#pragma once

#include <QWidget>

/// What an empty window shows: what to do first.
class StartPage : public QWidget
{
    Q_OBJECT

public:
    explicit StartPage(QWidget *parent = nullptr);

signals:
    void openWanted();
    void workspaceWanted();
    void demoWanted();
};
