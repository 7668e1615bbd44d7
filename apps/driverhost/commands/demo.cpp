#include "apps/driverhost/commands/commands.h"

#include "apps/driverhost/commands/demo_cases.h"
#include "apps/driverhost/console/link_options.h"
#include "apps/driverhost/console/messages.h"
#include "desk/items/value_place.h"
#include "desk/output/table.h"
#include "desk/project/needed_tags.h"
#include "desk/slave/slave_thread.h"
#include "desk/types/value_text.h"

namespace
{

const CommandLine::Texts Texts = {
    "demo",
    "",
    "Starts a slave on this machine, makes a project database, loads the plug-in and reads and writes every "
    "kind of\n"
    "item in every area, with the bytes that went over the wire; then shows how failures look. Ends with "
    "exit\n"
    "code 1 when anything is not as it should be.",
    "  driverhost demo",
};

const int FirstHole = 5000; // HR5001
const int LastHole = 5009;
const int Timeout = 250;
const int Retries = 1;

QString hexText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QString valuesText(const std::vector<quint32> &values, const Items &items)
{
    QStringList texts;
    for (const QByteArray &value : valuesOf(values, items))
        texts += textOf(value, typed(items).type);
    return texts.join(QLatin1Char(' '));
}

// A table of which every row has some lines below it, none longer than a narrow terminal.
class AnnotatedTable
{
public:
    explicit AnnotatedTable(const QStringList &titles) : m_table(titles) {}

    void addRow(const QStringList &cells, const QStringList &below)
    {
        m_table.addRow(cells);
        m_below.push_back(below);
    }
    QStringList lines() const
    {
        const QStringList rows = m_table.lines();
        QStringList lines{rows.first()};
        for (int i = 1; i < rows.size(); ++i) {
            lines += rows.at(i);
            for (const QString &line : m_below[static_cast<size_t>(i - 1)])
                lines += QStringLiteral("       ") + line;
        }
        return lines;
    }

private:
    Table m_table;
    std::vector<QStringList> m_below;
};

QStringList frameLines(const std::vector<Exchange> &exchanges)
{
    QStringList lines;
    for (const Exchange &exchange : exchanges)
        lines << QStringLiteral("> ") + hexText(exchange.request)
              << QStringLiteral("< ") + hexText(exchange.reply);
    return lines;
}

class Demonstration
{
public:
    Demonstration(Session &session, SlaveThread &slave) : m_session(session), m_slave(slave) {}

    int run();

private:
    void show(const DemoCase &demoCase);
    void showRead(const DemoCase &demoCase);
    void showWrite(const DemoCase &demoCase);
    void addRow(const char *what, const DemoCase &demoCase, bool isRight);

    void showFailures();
    void fail(const char *situation, const Fault &fault, const QString &expected);
    void fail(const char *situation, const Items &items, const QString &expected);

    Session &m_session;
    SlaveThread &m_slave;
    AnnotatedTable m_table{{QStringLiteral(""), QStringLiteral("address"), QStringLiteral("kind"),
                            QStringLiteral("values"), QStringLiteral("result")}};
    AnnotatedTable m_failures{{QStringLiteral("situation"), QStringLiteral("result")}};
    int m_wrong = 0;
};

int Demonstration::run()
{
    const std::vector<DemoCase> cases = demoCases();
    for (const DemoCase &demoCase : cases)
        show(demoCase);
    showFailures();

    QStringList lines = m_table.lines();
    lines += QString();
    lines += m_failures.lines();
    lines += QString();
    lines += m_wrong == 0 ? QStringLiteral("Everything is as it should be.")
                          : QStringLiteral("%1 of these are not as they should be.").arg(m_wrong);
    if (!print(lines))
        return OutputClosed;
    return m_wrong == 0 ? Success : OtherFailure;
}

void Demonstration::show(const DemoCase &demoCase)
{
    if (demoCase.isWritten) {
        showWrite(demoCase);
    } else {
        for (int i = 0; i < demoCase.items.count; ++i)
            putIntoSlave(m_slave, demoCase.items, i, demoCase.values[static_cast<size_t>(i)]);
    }
    showRead(demoCase);
}

void Demonstration::showWrite(const DemoCase &demoCase)
{
    bool isRight = m_session.write(demoCase.items,
                                   dataOf(valuesOf(demoCase.values, demoCase.items), typed(demoCase.items)));
    for (int i = 0; i < demoCase.items.count; ++i)
        isRight =
            valueInSlave(m_slave, demoCase.items, i) == demoCase.values[static_cast<size_t>(i)] && isRight;
    addRow("write", demoCase, isRight);
}

void Demonstration::showRead(const DemoCase &demoCase)
{
    const std::optional<QByteArray> data = m_session.read(demoCase.items);
    DemoCase read = demoCase;
    read.values = data ? numbersOf(valuesIn(*data, typed(demoCase.items))) : std::vector<quint32>();
    addRow("read", read, read.values == demoCase.values);
}

void Demonstration::addRow(const char *what, const DemoCase &demoCase, bool isRight)
{
    m_wrong += isRight ? 0 : 1;
    QStringList cells{QLatin1String(what), demoCase.items.label(0), nameOf(demoCase.items.kind),
                      valuesText(demoCase.values, demoCase.items),
                      isRight ? QStringLiteral("ok") : QStringLiteral("WRONG")};
    if (demoCase.items.kind == ByteItem || demoCase.items.kind == BlockItem)
        cells[1] = demoCase.items.address.text();
    m_table.addRow(cells, frameLines(m_session.exchanges()));
}

void Demonstration::showFailures()
{
    const QString details = QStringLiteral(" (read 1 word(s) from 1-HR100)");
    fail("no reply", Fault{Fault::Silence, -1}, QStringLiteral("PLC no response") + details);
    fail("reply of station 2", Fault{Fault::WrongStation, 2}, QStringLiteral("invalid slave id:2") + details);
    fail("reply cut short", Fault{Fault::Truncate, 6}, QStringLiteral("packet loss") + details);
    fail("reply damaged", Fault{Fault::WrongCrc, -1}, QStringLiteral("CRC error") + details);
    fail("device failure", Fault{Fault::Exception, 4}, QStringLiteral("exception code:0x04") + details);

    Items items;
    items.address = *parseAddress(QStringLiteral("HR5001"));
    fail("no such register", items, QStringLiteral("exception code:0x02 (read 1 word(s) from 1-HR5001)"));
    items.address = *parseAddress(QStringLiteral("HR65536"));
    items.count = 2;
    fail("beyond the area", items,
         QStringLiteral("can't read any word from HR65536 (read 2 word(s) from 1-HR65536)"));
    items.kind = ByteItem;
    items.address = *parseAddress(QStringLiteral("9-DO1"));
    fail("station without tags", items, QStringLiteral("invalid address 9-DO (read 2 byte(s) from 9-DO1)"));
    items.kind = EightByteItem;
    items.address = *parseAddress(QStringLiteral("HR1"));
    fail("kind not supported", items, QStringLiteral("unsupported data type: HR1"));

    m_slave.stop();
    m_session.channel().close();
    items.kind = WordItem;
    fail("slave switched off", items,
         QStringLiteral("cannot connect to 127.0.0.1:%1: Connection refused").arg(m_slave.port()));
}

void Demonstration::fail(const char *situation, const Fault &fault, const QString &expected)
{
    Items items;
    items.address = *parseAddress(QStringLiteral("HR100"));
    m_slave.inject(fault, Retries + 1);
    fail(situation, items, expected);
    // The same request once more: nothing that the fault has left may spoil it.
    if (!m_session.read(items))
        ++m_wrong;
}

void Demonstration::fail(const char *situation, const Items &items, const QString &expected)
{
    const bool isRight = !m_session.read(items) && m_session.failure().text == expected;
    m_wrong += isRight ? 0 : 1;
    QStringList below{m_session.failure().text};
    if (!isRight)
        below += QStringLiteral("expected: ") + expected;
    if (!m_session.exchanges().empty())
        below.prepend(QStringLiteral("> ") + hexText(m_session.exchanges().back().request));
    m_failures.addRow({QLatin1String(situation), isRight ? QStringLiteral("ok") : QStringLiteral("WRONG")},
                      below);
}

int demonstrate(Session &session)
{
    SlaveOptions options;
    options.memory.addHole({0, Area::HoldingRegisters, FirstHole, LastHole});
    SlaveThread slave(options);
    if (!slave.start()) {
        reportError(slave.errorString());
        return OtherFailure;
    }
    session.channel().deviceSetting()->setPort(slave.port(), -1);
    report(QStringLiteral("Plug-in %1, slave on 127.0.0.1:%2")
               .arg(session.driver().path(), QString::number(slave.port())));
    return Demonstration(session, slave).run();
}

} // namespace

Job prepareDemo(const QStringList &arguments)
{
    CommandLine line(Texts);
    line.addOptions({pluginOption(), traceOption()});
    if (const std::optional<int> end = line.parse(arguments))
        return *end;
    if (!line.words().isEmpty())
        line.addError(QStringLiteral("demo takes no arguments"));
    if (!line.isValid())
        return line.reportUsageError();

    QStringList tags;
    const std::vector<DemoCase> cases = demoCases();
    for (const DemoCase &demoCase : cases)
        tags += neededTags(demoCase.items, 1);

    LinkSettings link;
    link.plugin = line.text("plugin");
    link.trace = traceOf(line);
    link.channel.timeout = Timeout;
    link.channel.retries = Retries;
    // The frames are the driver's, and each fault is for one of them.
    link.channel.settle.mode = SettleMode::Off;
    return {link, tags, demonstrate};
}
