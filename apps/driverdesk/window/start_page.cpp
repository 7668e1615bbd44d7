#include "apps/driverdesk/window/start_page.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

StartPage::StartPage(QWidget *parent) : QWidget(parent)
{
    auto *grid = new QGridLayout(this);
    auto *title = new QLabel(tr("Nothing is open. What to do first:"), this);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    title->setFont(large);
    grid->addWidget(title, 1, 1, 1, 2);
    int row = 2;
    const auto add = [&](const QString &button, const QString &text, void (StartPage::*wanted)()) {
        auto *push = new QPushButton(button, this);
        auto *label = new QLabel(text, this);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
        label->setMinimumHeight(label->heightForWidth(label->minimumWidth()));
        connect(push, &QPushButton::clicked, this, wanted);
        grid->addWidget(push, row, 1);
        grid->addWidget(label, row, 2);
        ++row;
    };
    add(tr("&Open…"),
        tr("Say where the slave is, and what to read: addresses such as HR100..107 or DI17, a table of "
           "points, or "
           "a project database."),
        &StartPage::openWanted);
    add(tr("Open a wor&kspace…"), tr("Go on where a workspace was saved."), &StartPage::workspaceWanted);
    add(tr("Show the &demo"),
        tr("Without a slave at hand: everything at work on a slave of this program's own, with moving values "
           "and a "
           "fault now and then."),
        &StartPage::demoWanted);
    grid->setRowStretch(0, 1);
    grid->setRowStretch(row, 2);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(3, 1);
    grid->setVerticalSpacing(fontMetrics().height());
    grid->setHorizontalSpacing(fontMetrics().height());
}
