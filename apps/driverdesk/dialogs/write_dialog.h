#pragma once

#include "apps/driverdesk/models/write_draft.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

/// Writes one value: what it may be, what it was, which frames would go out, and what came of it. It orders
/// and shows; others carry it out.
class WriteDialog : public QDialog
{
    Q_OBJECT

public:
    WriteDialog(const PointRow &row, const QString &oldValue, QWidget *parent = nullptr);

    /// While it is locked nothing can be sent; frames are shown all the same.
    void setLocked(bool isLocked);
    /// The number of the order that was taken last; only its outcome is shown.
    void expect(quint64 order) { m_expected = order; }
    void showOutcome(const WriteOutcome &outcome);

    QComboBox *valueBox() const { return m_value; }
    QPushButton *writeButton() const { return m_write; }
    QPlainTextEdit *framesText() const { return m_frames; }
    QString resultText() const;
    const std::vector<QCheckBox *> &switches() const { return m_switches; }

signals:
    void ordered(const WriteOrder &order);
    void unlockWanted();

private:
    void layOut(const QString &oldValue);
    QWidget *makeSwitches();
    void check();
    void takeSwitches();
    void showSwitches();
    void orderPreview();
    void orderWrite();

    WriteDraft m_draft;
    QComboBox *m_value;
    QCheckBox *m_round;
    QLabel *m_problem;
    QPlainTextEdit *m_frames;
    QLabel *m_result;
    QPushButton *m_write;
    QPushButton *m_unlock;
    QTimer *m_previewTimer;
    std::vector<QCheckBox *> m_switches;
    quint64 m_expected = 0;
    bool m_isLocked = true;
    bool m_isValid = false;
    bool m_isWriting = false;
};
