#pragma once

#include "apps/driverdesk/slave/moving_slave.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSpinBox;
class Table;

/// The embedded slave: its port, its values, how they move, and what goes wrong with its replies.
class SlavePane : public QWidget
{
    Q_OBJECT

public:
    explicit SlavePane(MovingSlave &slave, QWidget *parent = nullptr);

    QSpinBox *portBox() const { return m_port; }
    QSpinBox *oneOfBox() const { return m_oneOf; }
    QPushButton *startButton() const { return m_start; }
    QLineEdit *rangeEdit() const { return m_range; }
    Table *table() const { return m_values; }
    QListView *faultList() const { return m_faults; }
    /// Shows what the slave has counted, and how it is set.
    void refresh();

signals:
    /// Something could not be done, for the reason in the text.
    void failed(const QString &text);
    /// The running slave is to be opened as the link's other end.
    void openWanted(quint16 port);

private:
    void layOut();
    QWidget *valuesSide();
    QWidget *faultsSide();
    void startOrStop();
    void addRange();
    void removeSelected();

    MovingSlave &m_slave;
    // The first, for the Tab key goes on from it.
    Table *m_values;
    QSpinBox *m_port;
    QLineEdit *m_stations;
    QPushButton *m_start;
    QPushButton *m_open;
    QLabel *m_state;
    QLineEdit *m_range;
    QListView *m_faults;
    QSpinBox *m_oneOf;
};
