#include "apps/driverdesk/dialogs/open_dialog.h"

#include "apps/driverdesk/opening/window_options.h"
#include "apps/driverdesk/panes/scrolled_widget.h"

#include <QCompleter>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace
{

const int MaxTimeout = 3600 * 1000;
const int MaxRetries = 1000;
const int MaxDelay = 4294;

QSpinBox *numberBox(int min, int max, int value, const QString &suffix, QWidget *parent)
{
    auto *box = new QSpinBox(parent);
    box->setRange(min, max);
    box->setValue(value);
    box->setSuffix(suffix);
    return box;
}

} // namespace

OpenDialog::OpenDialog(const QStringList &targetNames, QWidget *parent)
    : QDialog(parent),
      m_target(new QLineEdit(QStringLiteral("rtutcp://127.0.0.1:502/1"), this)),
      m_addresses(new QLineEdit(this)),
      m_points(new QLineEdit(this)),
      m_project(new QLineEdit(this)),
      m_device(new QLineEdit(this)),
      m_interval(new QDoubleSpinBox(this)),
      m_timeout(nullptr),
      m_retries(nullptr),
      m_delay(nullptr),
      m_problem(new QLabel(this))
{
    setWindowTitle(tr("Open"));
    const ChannelSettings channel;
    m_timeout = numberBox(1, MaxTimeout, channel.timeout, tr(" ms"), this);
    m_retries = numberBox(0, MaxRetries, channel.retries, {}, this);
    m_delay = numberBox(0, MaxDelay, static_cast<int>(channel.delay), tr(" ms"), this);
    m_interval->setRange(0, 3600);
    m_interval->setValue(1);
    m_interval->setSuffix(tr(" s"));
    m_target->setCompleter(new QCompleter(targetNames, m_target));
    m_target->setToolTip(
        tr("rtutcp://HOST:PORT/STATION, or @NAME of a target that has one; empty: the project's"));
    m_addresses->setPlaceholderText(tr("HR100..107 DI17 HR20:f32, or names of the table's points"));
    m_device->setPlaceholderText(channel.device);
    m_problem->setWordWrap(true);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto *fields = new QWidget(this);
    auto *form = new QFormLayout(fields);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("&Target:"), m_target);
    form->addRow(tr("&Addresses:"), m_addresses);
    form->addRow(tr("&Points:"),
                 withBrowse(m_points, tr("Table of points"), tr("Tables (*.csv);;All files (*)")));
    form->addRow(tr("P&roject:"), withBrowse(m_project, tr("Project database"), tr("All files (*)")));
    form->addRow(tr("&Device text:"), m_device);
    form->addRow(tr("&Interval:"), m_interval);
    form->addRow(tr("Time-&out:"), m_timeout);
    form->addRow(tr("R&etries:"), m_retries);
    form->addRow(tr("De&lay:"), m_delay);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &OpenDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *whole = new QVBoxLayout(this);
    whole->addWidget(new ScrolledWidget(fields, this), 1);
    whole->addWidget(m_problem);
    whole->addWidget(buttons);
    resizeWithinScreen(*this, {fontMetrics().averageCharWidth() * 80, sizeHint().height()});
}

QWidget *OpenDialog::withBrowse(QLineEdit *edit, const QString &title, const QString &filter)
{
    auto *row = new QWidget(this);
    auto *browse = new QPushButton(tr("Browse…"), row);
    connect(browse, &QPushButton::clicked, this, [=] {
        const QString path = QFileDialog::getOpenFileName(this, title, edit->text(), filter);
        if (!path.isEmpty())
            edit->setText(path);
    });
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(edit, 1);
    layout->addWidget(browse);
    row->setFocusProxy(edit);
    return row;
}

void OpenDialog::setTarget(const QString &target)
{
    m_target->setText(target);
}

void OpenDialog::setPoints(const QString &path)
{
    m_points->setText(path);
}

// The project says where its slave is.
void OpenDialog::setProject(const QString &path)
{
    m_project->setText(path);
    m_target->clear();
}

QStringList OpenDialog::arguments() const
{
    QStringList arguments;
    if (!m_target->text().trimmed().isEmpty())
        arguments += m_target->text().trimmed();
    const auto add = [&](const char *option, const QString &value) {
        if (!value.isEmpty())
            arguments += {QStringLiteral("--") + QLatin1String(option), value};
    };
    add("points", m_points->text());
    add("project", m_project->text());
    add("device", m_device->text());
    add("interval", QString::number(m_interval->value()));
    const ChannelSettings channel;
    if (m_timeout->value() != channel.timeout)
        add("timeout", QString::number(m_timeout->value()));
    if (m_retries->value() != channel.retries)
        add("retries", QString::number(m_retries->value()));
    if (m_delay->value() > 0)
        add("delay", QString::number(m_delay->value()));
    // Names of points in quotes may have blanks.
    return arguments + QProcess::splitCommand(m_addresses->text());
}

QString OpenDialog::problem() const
{
    return m_problem->text();
}

void OpenDialog::accept()
{
    const Result<WindowOptions> options = windowOptionsOf(arguments());
    if (!options)
        return m_problem->setText(options.errorText());
    if (options->ground.readings.empty())
        return m_problem->setText(
            tr("Nothing to read: expected addresses, a table of points, or a project."));
    QDialog::accept();
}
