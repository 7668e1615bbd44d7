#include "apps/driverdesk/dialogs/write_dialog.h"

#include "apps/driverdesk/panes/scrolled_widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

namespace
{

const int PreviewDelay = 150; // milliseconds after the last key
const int SwitchColumns = 4;
const int FramesLines = 6;

QLabel *selectableLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

} // namespace

WriteDialog::WriteDialog(const PointRow &row, const QString &oldValue, QWidget *parent)
    : QDialog(parent),
      m_draft(row),
      m_value(new QComboBox(this)),
      m_round(new QCheckBox(tr("&Round to what the type can hold"), this)),
      m_problem(selectableLabel({}, this)),
      m_frames(new QPlainTextEdit(this)),
      m_result(selectableLabel({}, this)),
      m_write(nullptr),
      m_unlock(new QPushButton(tr("&Unlock writing"), this)),
      m_previewTimer(new QTimer(this))
{
    setWindowTitle(tr("Write %1").arg(m_draft.label()));
    m_value->setEditable(true);
    m_value->setInsertPolicy(QComboBox::NoInsert);
    if (!m_draft.point().states.isOfBits())
        m_value->addItems(m_draft.point().states.names());
    m_value->clearEditText();
    m_frames->setReadOnly(true);
    m_frames->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_frames->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_frames->setTabChangesFocus(true);
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(PreviewDelay);
    layOut(oldValue);
    connect(m_value, &QComboBox::editTextChanged, this, &WriteDialog::check);
    connect(m_round, &QCheckBox::toggled, this, &WriteDialog::check);
    connect(m_previewTimer, &QTimer::timeout, this, &WriteDialog::orderPreview);
    connect(m_write, &QPushButton::clicked, this, &WriteDialog::orderWrite);
    connect(m_unlock, &QPushButton::clicked, this, &WriteDialog::unlockWanted);
    check();
    m_value->setFocus();
}

void WriteDialog::layOut(const QString &oldValue)
{
    auto *fields = new QWidget(this);
    auto *form = new QFormLayout(fields);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Point:"), selectableLabel(m_draft.label(), this));
    form->addRow(tr("Now:"), selectableLabel(oldValue, this));
    form->addRow(tr("Expected:"), selectableLabel(m_draft.expectedText(), this));
    form->addRow(tr("&New value:"), m_value);
    if (m_draft.switches() > 0)
        form->addRow(tr("Bits:"), makeSwitches());
    form->addRow(QString(), m_round);
    form->addRow(QString(), m_problem);
    form->addRow(tr("Frames:"), m_frames);
    form->addRow(tr("Result:"), m_result);
    m_frames->setMinimumHeight(FramesLines * fontMetrics().lineSpacing());
    m_frames->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_write = buttons->addButton(tr("&Write"), QDialogButtonBox::ActionRole);
    // Enter in the field must not send anything.
    m_write->setAutoDefault(false);
    m_unlock->setAutoDefault(false);
    buttons->addButton(m_unlock, QDialogButtonBox::ActionRole);
    buttons->button(QDialogButtonBox::Close)->setAutoDefault(false);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *whole = new QVBoxLayout(this);
    whole->addWidget(new ScrolledWidget(fields, this), 1);
    whole->addWidget(buttons);
    // With room for the texts that are still empty.
    resizeWithinScreen(*this, {fontMetrics().averageCharWidth() * 90,
                               sizeHint().height() + FramesLines * fontMetrics().lineSpacing()});
}

QWidget *WriteDialog::makeSwitches()
{
    auto *box = new QWidget(this);
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    for (int bit = 0; bit < m_draft.switches(); ++bit) {
        auto *one = new QCheckBox(m_draft.switchName(bit), box);
        grid->addWidget(one, bit / SwitchColumns, bit % SwitchColumns);
        connect(one, &QCheckBox::clicked, this, &WriteDialog::takeSwitches);
        m_switches.push_back(one);
    }
    return box;
}

void WriteDialog::setLocked(bool isLocked)
{
    m_isLocked = isLocked;
    m_unlock->setVisible(isLocked);
    check();
}

void WriteDialog::check()
{
    const QString text = m_value->currentText();
    const Result<QByteArray> value = m_draft.valueOf(text, m_round->isChecked());
    m_isValid = value.isGood();
    QString problem = m_draft.problem();
    if (problem.isEmpty() && !text.isEmpty())
        problem = value.errorText();
    if (problem.isEmpty() && m_isLocked)
        problem = tr("Writing is locked: nothing can be sent.");
    m_problem->setText(problem);
    m_write->setEnabled(m_isValid && !m_isLocked && !m_isWriting);
    showSwitches();
    if (m_isValid)
        m_previewTimer->start();
    else
        m_previewTimer->stop();
    if (!m_isValid && !m_isWriting)
        m_frames->clear();
}

void WriteDialog::takeSwitches()
{
    quint64 bits = 0;
    for (size_t bit = 0; bit < m_switches.size(); ++bit)
        bits |= m_switches[bit]->isChecked() ? quint64(1) << bit : 0;
    m_value->setEditText(m_draft.textOfBits(bits));
}

void WriteDialog::showSwitches()
{
    const std::optional<quint64> bits = m_draft.bitsOf(m_value->currentText());
    for (size_t bit = 0; bits && bit < m_switches.size(); ++bit)
        m_switches[bit]->setChecked((*bits >> bit & 1U) != 0);
}

void WriteDialog::orderPreview()
{
    const Result<QByteArray> value = m_draft.valueOf(m_value->currentText(), m_round->isChecked());
    if (value && !m_isWriting)
        emit ordered(m_draft.order(*value, true));
}

void WriteDialog::orderWrite()
{
    const Result<QByteArray> value = m_draft.valueOf(m_value->currentText(), m_round->isChecked());
    if (!value || m_isLocked || m_isWriting)
        return;
    m_previewTimer->stop();
    m_isWriting = true;
    m_write->setEnabled(false);
    m_result->setText(tr("Writing…"));
    emit ordered(m_draft.order(*value, false));
}

void WriteDialog::showOutcome(const WriteOutcome &outcome)
{
    if (outcome.id != m_expected)
        return;
    m_frames->setPlainText(outcome.frames.join(QLatin1Char('\n')));
    if (outcome.isPreview)
        return m_result->setText(outcome.text);
    m_isWriting = false;
    const QString mark = outcome.isGood ? QStringLiteral("✓ ") : QStringLiteral("⚠ ");
    m_result->setText(outcome.advice.isEmpty()
                          ? mark + outcome.text
                          : tr("%1%2\nCheck: %3").arg(mark, outcome.text, outcome.advice));
    m_write->setEnabled(m_isValid && !m_isLocked);
}

QString WriteDialog::resultText() const
{
    return m_result->text();
}
