#pragma once

#include <QDialog>

class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QSpinBox;

/// Asks what to open, and says it as the command line would.
class OpenDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OpenDialog(const QStringList &targetNames, QWidget *parent = nullptr);

    QStringList arguments() const;
    void setTarget(const QString &target);
    void setPoints(const QString &path);
    void setProject(const QString &path);
    QLineEdit *targetEdit() const { return m_target; }
    QLineEdit *addressesEdit() const { return m_addresses; }
    QString problem() const;

    /// Closes only when what it says can be opened.
    void accept() override;

private:
    QWidget *withBrowse(QLineEdit *edit, const QString &title, const QString &filter);

    QLineEdit *m_target;
    QLineEdit *m_addresses;
    QLineEdit *m_points;
    QLineEdit *m_project;
    QLineEdit *m_device;
    QDoubleSpinBox *m_interval;
    QSpinBox *m_timeout;
    QSpinBox *m_retries;
    QSpinBox *m_delay;
    QLabel *m_problem;
};
