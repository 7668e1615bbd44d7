#include "desk/doctor/examinations/examination.h"
#include "desk/doctor/observing/evidence.h"
#include "desk/wire/frame_text.h"
#include "desk/wire/rtu_frame.h"

#include <algorithm>

// Which functions besides those that read the station knows. Function 8 returns what it gets and changes
// nothing. Writing is only tried where that is allowed, and writes back what was read just before.

namespace
{

QByteArray frameOf(int station, int function, const QByteArray &data)
{
    return withCrc(QByteArray(1, static_cast<char>(station)) + static_cast<char>(function) + data);
}

QByteArray wordBytes(int word)
{
    return QByteArray(1, static_cast<char>(word >> 8)) + static_cast<char>(word & 0xFF);
}

// The address that was read last, and its reply; nothing where the area has none.
Asked freshRead(Examiner &examiner, Area area)
{
    int offset = -1;
    for (const Asked &one : examiner.seen().asked) {
        if (offset < 0 && one.result == AskResult::Answered && one.function() == readFunction(area) &&
            one.station() == examiner.seen().working)
            offset = wordAt(one.request, 2);
    }
    if (offset < 0)
        return {};
    return examiner.askPatiently(Purpose::Function, readRequest(examiner.seen().working, area, offset, 1));
}

void write(Examiner &examiner, int function, const QByteArray &data)
{
    const QByteArray request = frameOf(examiner.seen().working, function, data);
    examiner.announce(QStringLiteral("writes back what was read: ") +
                      describeFrame(FrameRole::Request, request));
    examiner.ask(Purpose::Write, request, examiner.usualWait());
}

void writeRegister(Examiner &examiner)
{
    for (const int function : {modbus::WriteSingleRegister, modbus::WriteMultipleRegisters}) {
        const Asked read = freshRead(examiner, Area::HoldingRegisters);
        if (read.result != AskResult::Answered)
            return;
        const QByteArray address = read.request.mid(2, 2);
        const QByteArray value = read.reply.mid(3, 2);
        const bool isSingle = modbus::isWriteSingle(function);
        write(examiner, function, isSingle ? address + value : address + wordBytes(1) + '\2' + value);
    }
}

void writeCoil(Examiner &examiner)
{
    for (const int function : {modbus::WriteSingleCoil, modbus::WriteMultipleCoils}) {
        const Asked read = freshRead(examiner, Area::Coils);
        if (read.result != AskResult::Answered)
            return;
        const QByteArray address = read.request.mid(2, 2);
        const bool isOn = (byteAt(read.reply, 3) & 1) != 0;
        const bool isSingle = modbus::isWriteSingle(function);
        write(examiner, function,
              isSingle ? address + wordBytes(isOn ? 0xFF00 : 0)
                       : address + wordBytes(1) + '\1' + static_cast<char>(isOn ? 1 : 0));
    }
}

void observe(Examiner &examiner)
{
    if (examiner.seen().working < 0 || !examiner.hasTimeFor(2 * examiner.usualWait()))
        return;
    const QByteArray anyData = QByteArray::fromHex("0000a537");
    examiner.ask(Purpose::Function, frameOf(examiner.seen().working, modbus::Diagnostics, anyData),
                 examiner.usualWait());
    if (!examiner.options().probesWrites)
        return;
    writeRegister(examiner);
    writeCoil(examiner);
}

QString textOf(const Asked &asked)
{
    const QString function = QStringLiteral("function %1").arg(asked.function());
    if (asked.result == AskResult::Answered)
        return function + QStringLiteral(" is known");
    if (asked.exception() == modbus::IllegalFunction)
        return function + QStringLiteral(" is not known");
    if (asked.result == AskResult::Refused)
        return function + QStringLiteral(" is refused with exception %1 (%2)")
                              .arg(QString::number(asked.exception()), exceptionName(asked.exception()));
    return function + QStringLiteral(" is not answered");
}

// What reads tell: a slave without coils has none to write.
QString notTriedText(const Observations &seen)
{
    const auto isRefused = [&](int function) {
        return std::any_of(seen.asked.begin(), seen.asked.end(), [&](const Asked &one) {
            return one.function() == function && one.exception() == modbus::IllegalFunction;
        });
    };
    QStringList unlikely;
    if (isRefused(modbus::ReadCoils))
        unlikely += QStringLiteral("15");
    if (isRefused(modbus::ReadHoldingRegisters))
        unlikely += QStringLiteral("16");
    const QString text = QStringLiteral("functions 15 and 16 write and were not tried (--probe-writes)");
    return unlikely.isEmpty() ? text
                              : text + QStringLiteral("; %1 would surprise, since its area cannot be read")
                                           .arg(listText(unlikely));
}

Judgement judge(const Observations &seen, const DoctorOptions &options)
{
    Judgement judgement;
    QStringList texts;
    std::vector<const Asked *> writes = seen.askedFor(Purpose::Write);
    for (const Asked *one : seen.askedFor(Purpose::Function)) {
        if (one->function() == modbus::Diagnostics)
            texts += textOf(*one);
    }
    for (const Asked *one : writes)
        texts += textOf(*one);
    if (texts.isEmpty())
        return judgement;
    if (!options.probesWrites)
        texts += notTriedText(seen);
    judgement.add(FindingKind::Functions, texts.join(QStringLiteral("; ")), evidenceOf(writes, 4));
    return judgement;
}

} // namespace

Examination functionExamination()
{
    return {"trying functions", observe, judge};
}
