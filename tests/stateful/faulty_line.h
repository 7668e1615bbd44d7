#pragma once

#include "tests/doubles/model_slave.h"
#include "tests/doubles/scripted_channel.h"
#include "tests/stateful/fault.h"

#include <deque>

/// A channel to a slave, whose faults come one a request in the order in which they were added.
class FaultyLine : public ScriptedChannel
{
public:
    /// All areas of the slave have \a areaSize items.
    explicit FaultyLine(int areaSize);

    void addFaults(const std::vector<Fault> &faults);
    /// The next \a times that the channel is opened fail.
    void refuseToOpen(int times) { refusals += times; }

    int sentCount() const { return sent; }
    ModelSlave &slave() { return answering; }

    int writeData(const char *data, int length) override;
    bool open() override;

private:
    Fault takeFault();
    QByteArray replyTo(const QByteArray &request);

    ModelSlave answering;
    std::deque<Fault> coming;
    Fault now;
    int refusals;
    int sent;
};
