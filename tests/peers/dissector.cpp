#include "tests/peers/dissector.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace
{

const char SlavePort[] = "1502";
// Lines of frames that went over the wire; those that were dropped or have no bytes do not match.
const char FrameLine[] = "^(?<time>[0-9:.]+)[-+][0-9:]+ (?<dir>[<>]) (?<data>(?:[0-9A-F]{2} )+)";

QByteArray outputOf(const QString &program, const QStringList &arguments, QString &error)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0) {
        error =
            QStringLiteral("%1: %2 %3").arg(program, process.errorString(), process.readAllStandardError());
        return QByteArray();
    }
    return process.readAllStandardOutput();
}

DissectedFrame frameFrom(const QList<QByteArray> &fields)
{
    DissectedFrame frame;
    frame.hasGoodCrc = fields.value(0) == "1";
    frame.isMalformed = !fields.value(1).isEmpty();
    frame.unit = fields.value(2).isEmpty() ? -1 : fields.value(2).toInt();
    frame.function = fields.value(3).isEmpty() ? -1 : fields.value(3).toInt();
    frame.isQuery = fields.value(4).contains("Query:");
    frame.isResponse = fields.value(4).contains("Response:");
    return frame;
}

} // namespace

QList<DissectedFrame> dissect(const QStringList &traceLines, QString &error)
{
    const QTemporaryDir folder;
    const QString trace = folder.filePath(QStringLiteral("trace.txt"));
    const QString capture = folder.filePath(QStringLiteral("trace.pcapng"));
    QFile file(trace);
    if (!file.open(QIODevice::WriteOnly)) {
        error = file.errorString();
        return {};
    }
    file.write(traceLines.join(QLatin1Char('\n')).toUtf8() + '\n');
    file.close();

    outputOf("text2pcap",
             {"-q", "-r", FrameLine, "-t", "%H:%M:%S.%f", "-T", QStringLiteral("%1,40000").arg(SlavePort),
              trace, capture},
             error);
    const QByteArray output = outputOf("tshark", {"-r", capture,
                                                  "-d", QStringLiteral("tcp.port==%1,mbrtu").arg(SlavePort),
                                                  "-o", QStringLiteral("mbrtu.tcp.port:%1").arg(SlavePort),
                                                  "-o", "mbrtu.crc_verification:TRUE",
                                                  "-T", "fields",
                                                  "-e", "mbrtu.crc16.status",
                                                  "-e", "_ws.malformed",
                                                  "-e", "mbrtu.unit_id",
                                                  "-e", "modbus.func_code",
                                                  "-e", "_ws.col.Info"},
                                       error);
    QList<DissectedFrame> frames;
    for (const QByteArray &line : output.split('\n')) {
        if (!line.isEmpty())
            frames.append(frameFrom(line.split('\t')));
    }
    return frames;
}
